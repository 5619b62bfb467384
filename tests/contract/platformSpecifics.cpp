#include "tests/contract/platformSpecifics.h"

#include "tests/contract/HostBackend.h"
#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>

#include <ctime>

namespace VeskLib::Test {

namespace {

const unsigned int MAX_PARTITIONS = 12;
const char* const TOKEN = "0123456789abcdef0123456789abcdef";
const char* const TOKEN_SHA256 = "3eb1bd439947eb762998e566ccc2e099c791118b2f40579cc4f7da2b5061b7f9";

// Adds lines to the board properties that the back-end publishes.
void publish(const std::string& lines) {
    const std::string path = getCGIPath("/var/run/board_properties");
    const std::string before =
        exists(path) ? readText(path) : "max_partitions=" + std::to_string(MAX_PARTITIONS) + "\n";
    if (!exists(path) || before.find(lines) == std::string::npos) {
        writeText(path, before + lines);
    }
}

// Writes a session file of the host platform. Returns the CGI variables of a request in the
// session.
Environment startSession(const std::string& identifier, const std::string& functions,
                         std::time_t created, const std::string& language = "en") {
    const std::string user = "contract" + functions;
    publish("user=0 " + functions + " " + user + "\n");
    writePrivateText(getCGIPath(("/var/lib/session/" + identifier).c_str()),
                     std::string("token_sha256=") + TOKEN_SHA256 + "\nuser=" + user +
                         "\ncreated=" + std::to_string(created) + "\n");
    return {{"HTTP_COOKIE", "language=" + language + "; session=" + identifier + "-" + TOKEN}};
}

Environment sessionCookie(const std::string& value) {
    return {{"HTTP_COOKIE", "session=" + value}};
}

}  // namespace

std::string skeletonMark(const std::string& name) {
    return "{{" + name + "}}";
}

std::string clickAttribute() {
    return "data-click";
}

std::string traceFile() {
    return "/var/log/trace.log";
}

Environment requestOf(User user, int messageSet) {
    const std::string language = messageSet == 1 ? "ja" : "en";
    return user == User::WITH_RIGHT
               ? startSession("00112233445566aa", ",105,106,", std::time(nullptr), language)
               : startSession("00112233445566bb", ",5,1051,", std::time(nullptr), language);
}

std::vector<Environment> requestsWithoutSession() {
    const std::string living = "00112233445566cc";
    startSession(living, ",105,106,", std::time(nullptr));
    return {{},
            sessionCookie("x"),
            sessionCookie("../../../../etc/passwd"),
            sessionCookie("ffffffffffffffff-" + std::string(TOKEN)),
            sessionCookie(living + "-" + std::string(32, '0')),
            sessionCookie(living),
            startSession("00112233445566dd", ",105,106,", 1)};
}

std::vector<ConfigurationFileSample> configurationFileSamples() {
    const std::string magic("EFICONF\x1A");
    const std::string revision("\0\0\0\x01", 4);
    const std::string sizes("\0\x04\0\x04\0\0\0\x06", 8);  // of version, name and payload
    const std::string payload("\0\xFF{\n}\0", 6);
    return {{.bytes = magic + revision + std::string("\x12\x34\x56\x78\0\0\0\x05", 8) + sizes +
                      "2.10Test" + payload + std::string("\x91\x74\x8D\x0F", 4),
             .revision = 1,
             .saveTime = 0x12345678,
             .partition = 5,
             .version = "2.10",
             .partitionName = "Test"},
            {.bytes = magic + revision + std::string("\xF0\0\0\x01\0\0\0\0", 8) + sizes +
                      "-   \xE8\xA3\xBD " + payload + std::string("\x36\xC0\xFA\x41", 4),
             .revision = 1,
             .saveTime = 0xF0000001,
             .partition = 0,
             .version = "-   ",
             .partitionName = "\xE8\xA3\xBD "}};
}

unsigned int systemBoardWord(bool installed, bool home) {
    return (installed ? 0x80000000 : 0) | (home ? 0x40000000 : 0);
}

unsigned int maxPartitionNum() {
    publish("");
    return MAX_PARTITIONS;
}

std::unique_ptr<Backend> startBackend(const std::vector<BackendReply>& replies) {
    return std::make_unique<HostBackend>(replies);
}

}  // namespace VeskLib::Test
