#pragma once

#include "tests/support/ChildProcess.h"

#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

// What the tests need to know of a board and no header of the platform says. A board brings its own
// definitions (CMake option PLATFORM_SPECIFICS); platformSpecifics.cpp has the host's.

// How a skeleton marks the place of the component `name`.
std::string skeletonMark(const std::string& name);

// The attribute in which a component prints the script call of a click.
std::string clickAttribute();

// The board's path of the trace log; empty when the log is not a file, which skips its tests.
std::string traceFile();

// WITH_RIGHT may use the functions 105 and 106, WITHOUT_RIGHT neither of them.
enum class User { WITH_RIGHT, WITHOUT_RIGHT };

// Logs in `user` and returns the CGI variables of a request in that session, in the language of
// `messageSet`. The session lasts until the test program ends; two calls may return the same one.
Environment requestOf(User user, int messageSet = 0);

// Returns the CGI variables of requests that carry no valid session: none at all, a malformed one,
// one that never existed, one with a wrong secret, one that has expired.
std::vector<Environment> requestsWithoutSession();

// A configuration file that the board can restore, and what EFIConfFile must read from it.
struct ConfigurationFileSample {
    std::string bytes;
    unsigned int revision = 0;
    unsigned int saveTime = 0;
    unsigned int partition = 0;
    std::string version;
    std::string partitionName;
};

// Returns at least one sample. One was saved after January 2038, if the board can make it.
std::vector<ConfigurationFileSample> configurationFileSamples();

// Returns the `word` of HardInstallInfoPacket::SBData for a system board.
unsigned int systemBoardWord(bool installed, bool home);

// Returns what CommonUtil::getMaxPartitionNum() must return, above 0. Called before it.
unsigned int maxPartitionNum();

// What the back-end does with one request.
struct BackendReply {
    enum Kind {
        ANSWER,  // carries it out; `object` is the answer to a getInfo()
        REFUSE,  // answers with `errorCode`
        SILENT,  // never answers, and keeps the connection
    };
    Kind kind = ANSWER;
    std::vector<unsigned char> object = {};
    unsigned int errorCode = 0;
};

// A request that the back-end received.
struct BackendRequest {
    unsigned int number = 0;
    std::string sessionId;
    std::vector<unsigned char> object;  // of a setInfo(); empty for a getInfo()
};

// A back-end that CGIRequester reaches, from this process and its children, while the object lives.
class Backend {
public:
    virtual ~Backend() = default;

    // Stops the back-end and returns the requests in the order in which they arrived. Called once,
    // after every CGIRequester that has connected is destroyed.
    virtual std::vector<BackendRequest> stop() = 0;
};

// Starts a back-end that gives the replies one after the other, the last one to every request that
// follows. Returns null if the board cannot have one, which skips the tests that need it.
std::unique_ptr<Backend> startBackend(const std::vector<BackendReply>& replies);

}  // namespace VeskLib::Test
