#pragma once

#include <VeskLib/Gui/CGIAuthority.h>
#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/EFIConfFile.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/SerializableObject.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace VeskLib::Scripted {

// Thrown where a real platform ends the process.
struct RequestEnded {
    std::string endedBy;
};

// The back-end's answer to a request: refused when the error code is not 0. `fill` puts the
// answer of a getInfo() into the program's object.
struct Reply {
    int errorCode = 0;
    std::function<void(VeskUi::SerializableObject&)> fill;
};

// The error code of a request for which the script holds no reply.
inline constexpr int NOT_SCRIPTED = 9999;

// What the platform answers. A test changes what matters to it. Where a detail code is optional,
// setting it makes the operation throw PException with that code.
struct Script {
    // Gives the back-end's partition table, and as many partition numbers.
    void setPartitions(const std::vector<VeskUi::PartitionInfoPacket::Partition>& partitions);

    // Has the back-end know these BIOS versions, by system board, and which boards are installed.
    void setVersions(const std::vector<std::string>& versions);
    void setBoards(const std::set<int>& installed, const std::set<int>& home);

    // What the request's cookie says; what it does not say stays as it is.
    std::optional<std::string> sessionText = "the session";
    std::optional<int> messageSet;

    // The session's user.
    Gui::CGIAuthority authority = {};
    int preCheckDisplayMode = 0;
    int displayMode = 2;

    // The request's end.
    std::optional<int> exitStatus;  // of exec(); individualProc()'s result when not set
    bool sessionIsValid = true;     // guiCheckSession() throws RequestEnded when not
    bool errorExitReturns = false;  // errorExit() throws RequestEnded when not

    // The form. makePage() runs makeConfigPage() when it was posted, makeDispPage() when not.
    bool posted = false;
    std::optional<unsigned short> formError;
    std::map<std::string, std::string> formFields;

    // The uploaded file, and the detail with which getUploadFilePath() throws.
    std::string uploadName;
    std::string uploadPath;
    unsigned int uploadSize = 0;
    std::optional<unsigned short> uploadPathError;

    std::string sessionId = "S1";
    std::map<unsigned int, Reply> replies;  // by request number

    // getMaxPartitionNum()'s results, one per call; the last one stays.
    std::vector<unsigned int> maxPartitionNumbers = {0};
    std::set<int> installedBoards;
    std::set<int> homeBoards;

    // By name of the place, and by the skeleton's path: insertIntoMap() and printHTML() throw.
    std::map<std::string, unsigned short> insertErrors;
    std::map<std::string, unsigned short> skeletonErrors;

    std::string pathPrefix = "/board";  // getCGIPath() puts it before a path

    std::optional<unsigned short> lockError;
    std::optional<unsigned short> openError;    // of EFIConfFile
    std::optional<unsigned short> headerError;  // of EFIConfFile::getFileHeader()
    VeskUi::EFIConfFile::EFIConfFileHeader fileHeader;
    unsigned int filePartition = 0;
    std::string fileVersion;
    std::string filePartitionName;

    // The operating system's calls. An errno other than 0 makes the call fail. The others
    // succeed without touching a file, unless `realFiles` is set. `descriptor` is what creat() then
    // returns; no process here has so many open.
    int creatError = 0;
    int closeError = 0;
    int renameError = 0;
    int removeError = 0;
    bool realFiles = false;
    int descriptor = 100000;
};

// The script of the test that runs.
Script& script();

// Starts over: the script as declared above, nothing recorded, and the program's calls of the
// operating system are recorded and scripted.
void startScript();

// From now on calls of the operating system go through unrecorded.
void endScript();

// The exception that a scripted failure with `detail` throws.
PException makeScriptedException(unsigned short detail);

}  // namespace VeskLib::Scripted
