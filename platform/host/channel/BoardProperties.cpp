#include "platform/host/channel/BoardProperties.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>

#include <cerrno>
#include <charconv>
#include <string_view>
#include <utility>

namespace VeskLib::Host {

namespace {

// Much more than the back-end writes for any board.
const std::size_t LARGEST_PROPERTIES = 1024 * 1024;

const std::string_view MAX_PARTITIONS = "max_partitions";
const std::string_view NAME = "name";
const std::string_view HOST = "host";
const std::string_view USER = "user";
const std::string_view SYSLOG_SOCKET = "syslog_socket";

bool readNumber(std::string_view text, unsigned int& number) {
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

// Parses "0 ,105,106, NAME". Without functions the list is "-". A name may contain blanks.
bool readUser(std::string_view text, BoardProperties& properties) {
    const std::size_t functions = 2;
    const std::size_t end = text.find(' ', functions);
    if (end == std::string_view::npos || text[1] != ' ' || (text[0] != '0' && text[0] != '1')) {
        return false;
    }
    const std::string_view list = text.substr(functions, end - functions);
    properties.users[std::string(text.substr(end + 1))] = {
        .everyFunction = text[0] == '1', .functions = list == "-" ? "" : std::string(list)};
    return true;
}

void addLine(std::string& text, std::string_view name, const std::string& value) {
    if (value.find('\n') == std::string::npos) {
        text.append(name).append("=").append(value).append("\n");
    }
}

// Reads one line. Sets `counted` to true if it is the number of partitions.
bool readLine(std::string_view name, std::string_view value, BoardProperties& properties,
              bool& counted) {
    if (name == MAX_PARTITIONS) {
        counted = true;
        return readNumber(value, properties.maxPartitions);
    }
    if (name == USER) {
        return readUser(value, properties);
    }
    if (name == NAME) {
        properties.name = value;
    }
    if (name == HOST) {
        properties.hosts.emplace_back(value);
    }
    if (name == SYSLOG_SOCKET) {
        properties.syslogSocket = value;
    }
    return true;
}

}  // namespace

bool UserRights::allow(int function) const {
    std::string listed = ",";
    listed += std::to_string(function);
    listed += ',';
    return everyFunction || functions.find(listed) != std::string::npos;
}

std::vector<unsigned char> encode(const BoardProperties& properties) {
    std::string text;
    addLine(text, MAX_PARTITIONS, std::to_string(properties.maxPartitions));
    if (!properties.name.empty()) {
        addLine(text, NAME, properties.name);
    }
    for (const std::string& host : properties.hosts) {
        addLine(text, HOST, host);
    }
    for (const auto& [name, rights] : properties.users) {
        std::string value = rights.everyFunction ? "1 " : "0 ";
        value += rights.functions.empty() ? "-" : rights.functions;
        value += ' ';
        addLine(text, USER, value + name);
    }
    if (!properties.syslogSocket.empty()) {
        addLine(text, SYSLOG_SOCKET, properties.syslogSocket);
    }
    return {text.begin(), text.end()};
}

bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties) {
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    BoardProperties read;
    bool counted = false;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos &&
            !readLine(line.substr(0, equals), line.substr(equals + 1), read, counted)) {
            return false;
        }
    }
    if (counted) {
        properties = std::move(read);
    }
    return counted;
}

BoardProperties readBoardProperties() {
    BoardProperties properties;
    std::vector<unsigned char> bytes;
    if (readFile(getCGIPath(BOARD_PROPERTIES), LARGEST_PROPERTIES, bytes)) {
        decode(bytes, properties);
    } else if (errno != ENOENT) {
        // Not to be treated like a missing file, which means no partitions and no users.
        throw makePlatformException(FILE_NOT_READABLE, "The board's properties cannot be read");
    }
    return properties;
}

const BoardProperties& boardProperties() {
    static const BoardProperties PROPERTIES = readBoardProperties();
    return PROPERTIES;
}

}  // namespace VeskLib::Host
