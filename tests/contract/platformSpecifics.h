#pragma once

#include "tests/support/ChildProcess.h"

#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

// What the tests must know of a board and the platform's headers do not state. Each board provides
// its own definitions (CMake option PLATFORM_SPECIFICS); those of the host are in
// platformSpecifics.cpp.

// Returns the mark in a skeleton at which the component `name` is printed.
std::string skeletonMark(const std::string& name);

// Returns the name of the attribute in which a component prints its click handler.
std::string clickAttribute();

// Returns the board's path of the trace log. Returns "" if the log is not a file, which skips the
// tests of the log.
std::string traceFile();

// WITH_RIGHT may use the functions 105 and 106, WITHOUT_RIGHT neither of them.
enum class User { WITH_RIGHT, WITHOUT_RIGHT };

// Logs in `user` and returns the CGI variables of a request in that session, in the language of
// `messageSet`. The session lasts until the test program ends; two calls may return the same one.
Environment requestOf(User user, int messageSet = 0);

// Returns the CGI variables of requests without a valid session: no session, malformed, never
// existed, wrong secret, expired.
std::vector<Environment> requestsWithoutSession();

// A configuration file that the board can restore, and the values that EFIConfFile must read from
// it.
struct ConfigurationFileSample {
    std::string bytes;
    unsigned int revision = 0;
    unsigned int saveTime = 0;
    unsigned int partition = 0;
    std::string version;
    std::string partitionName;
};

// Returns at least one sample. If the board can make such a file, one was saved after January 2038.
std::vector<ConfigurationFileSample> configurationFileSamples();

// Returns the `word` of HardInstallInfoPacket::SBData for a system board.
unsigned int systemBoardWord(bool installed, bool home);

// Returns the value that CommonUtil::getMaxPartitionNum() must return, above 0. Called before that
// function.
unsigned int maxPartitionNum();

// The reaction of the back-end to one request.
struct BackendReply {
    enum Kind {
        ANSWER,  // carries out the request; `object` is the answer to a getInfo()
        REFUSE,  // answers with `errorCode`
        SILENT,  // never answers, but keeps the connection open
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

// A back-end that CGIRequester can reach, from this process and its children, while the object
// exists.
class Backend {
public:
    virtual ~Backend() = default;

    // Stops the back-end and returns the requests in order of arrival. Called once, after every
    // connected CGIRequester has been destroyed.
    virtual std::vector<BackendRequest> stop() = 0;
};

// Starts a back-end that sends the replies in order, and repeats the last one for all further
// requests. Returns null if the board cannot provide one, which skips the tests that need it.
std::unique_ptr<Backend> startBackend(const std::vector<BackendReply>& replies);

}  // namespace VeskLib::Test
