#include "tests/support/sessions.h"

#include "platform/host/base/sha256.h"
#include "platform/host/channel/BoardProperties.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"

#include <ctime>
#include <vector>

namespace VeskLib::Test {

void publishUser(const std::string& name, bool everyFunction, const std::string& functions) {
    const std::string path = boardFile("/var/run/board_properties");
    Host::BoardProperties properties;
    if (exists(path)) {
        const std::string text = readText(path);
        decode(std::vector<unsigned char>(text.begin(), text.end()), properties);
    }
    properties.users[name] = {.everyFunction = everyFunction, .functions = functions};
    const std::vector<unsigned char> bytes = encode(properties);
    writeText(path, std::string(bytes.begin(), bytes.end()));
}

Host::Session startSession(const std::string& user, bool everyFunction,
                           const std::string& functions) {
    publishUser(user, everyFunction, functions);
    return Host::startSession(user);
}

void writeSession(const std::string& cookieValue, const std::string& user) {
    const std::string identifier = Host::identifierOf(cookieValue);
    const std::string path = boardFile("/var/lib/session/" + identifier);
    const std::string token = cookieValue.substr(identifier.size() + 1);
    writePrivateText(path, "token_sha256=" + Host::sha256Hex(token) + "\nuser=" + user +
                               "\ncreated=" + std::to_string(std::time(nullptr)) + "\n");
}

}  // namespace VeskLib::Test
