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

// Thrown where a real platform would end the process.
struct RequestEnded {
    std::string endedBy;
};

// The back-end's answer to a request: refused if the error code is not 0. `fill` writes the answer
// to a getInfo() into the program's object.
struct Reply {
    int errorCode = 0;
    std::function<void(VeskUi::SerializableObject&)> fill;
};

// The error code of a request that has no reply in the script.
inline constexpr int NOT_SCRIPTED = 9999;

// The platform's answers; a test changes those that matter to it. Each optional detail code, if
// set, makes its operation throw PException with that code.
struct Script {
    // Sets the back-end's partition table, and the number of partitions to its size.
    void setPartitions(const std::vector<VeskUi::PartitionInfoPacket::Partition>& partitions);

    // Set the back-end's BIOS versions, indexed by system board, and the numbers of its installed
    // boards and of its home boards. They take effect when the program requests them.
    void setVersions(const std::vector<std::string>& versions);
    void setBoards(const std::set<int>& installed, const std::set<int>& home);

    // The contents of the request's cookie. An unset value leaves the program's value unchanged.
    std::optional<std::string> sessionText = "the session";
    std::optional<int> messageSet;

    // The user's authority.
    Gui::CGIAuthority authority = {};
    int preCheckDisplayMode = 0;
    int displayMode = 2;

    // How the request ends.
    std::optional<int> exitStatus;  // of exec(); if unset, individualProc()'s result
    bool sessionIsValid = true;     // if false, guiCheckSession() throws RequestEnded
    bool errorExitReturns = false;  // if false, errorExit() throws RequestEnded

    // The form. makePage() calls makeConfigPage() if the form was posted, otherwise makeDispPage().
    bool posted = false;
    std::optional<unsigned short> formError;
    std::map<std::string, std::string> formFields;

    // The uploaded file, and the detail code that getUploadFilePath() throws.
    std::string uploadName;
    std::string uploadPath;
    unsigned int uploadSize = 0;
    std::optional<unsigned short> uploadPathError;

    std::string sessionId = "S1";
    std::map<unsigned int, Reply> replies;  // by request number

    // The results of getMaxPartitionNum(), one per call; the last one is repeated.
    std::vector<unsigned int> maxPartitionNumbers = {0};
    std::set<int> installedBoards;
    std::set<int> homeBoards;

    // Detail codes that insertIntoMap() throws, by component name, and that printHTML() throws, by
    // skeleton path.
    std::map<std::string, unsigned short> insertErrors;
    std::map<std::string, unsigned short> skeletonErrors;

    std::string pathPrefix = "/board";  // prepended by getCGIPath()

    std::optional<unsigned short> lockError;
    std::optional<unsigned short> openError;    // of EFIConfFile
    std::optional<unsigned short> headerError;  // of EFIConfFile::getFileHeader()
    VeskUi::EFIConfFile::EFIConfFileHeader fileHeader;
    unsigned int filePartition = 0;
    std::string fileVersion;
    std::string filePartitionName;

    // System calls. A nonzero errno makes its call fail. Otherwise calls succeed without touching
    // any file, and creat() returns `descriptor`, a number too large to be open in this process.
    // With `realFiles`, they go to the operating system.
    int creatError = 0;
    int closeError = 0;
    int renameError = 0;
    int removeError = 0;
    bool realFiles = false;
    int descriptor = 100000;
};

// Returns the script of the current test.
Script& script();

// Resets the script to its defaults, discards all records, and starts to record and script the
// program's system calls.
void startScript();

// Lets system calls through to the operating system again, without recording them.
void endScript();

// Returns the exception that a scripted failure with `detail` throws.
PException makeScriptedException(unsigned short detail);

}  // namespace VeskLib::Scripted
