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

const std::string_view MAX_PARTITIONS = "max_partitions=";
const std::string_view HOST = "host=";
// Far above what the back-end writes.
const std::size_t LARGEST_PROPERTIES = 1024 * 1024;

bool readNumber(std::string_view text, unsigned int& number) {
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

BoardProperties readBoardProperties() {
    BoardProperties properties;
    std::vector<unsigned char> bytes;
    if (readFile(getCGIPath(BOARD_PROPERTIES), LARGEST_PROPERTIES, bytes)) {
        decode(bytes, properties);
    } else if (errno != ENOENT) {
        // Not the same as a board without partitions and names.
        throw makePlatformException(FILE_NOT_READABLE, "The board's properties cannot be read");
    }
    return properties;
}

}  // namespace

std::vector<unsigned char> encode(const BoardProperties& properties) {
    std::string text(MAX_PARTITIONS);
    text += std::to_string(properties.maxPartitions) + "\n";
    for (const std::string& host : properties.hosts) {
        text += std::string(HOST) + host + "\n";
    }
    return {text.begin(), text.end()};
}

bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties) {
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    BoardProperties read;
    bool hasNumber = false;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        if (!hasNumber && line.starts_with(MAX_PARTITIONS)) {
            if (!readNumber(line.substr(MAX_PARTITIONS.size()), read.maxPartitions)) {
                return false;
            }
            hasNumber = true;
        } else if (line.starts_with(HOST)) {
            read.hosts.emplace_back(line.substr(HOST.size()));
        }
    }
    if (hasNumber) {
        properties = std::move(read);
    }
    return hasNumber;
}

const BoardProperties& boardProperties() {
    static const BoardProperties PROPERTIES = readBoardProperties();
    return PROPERTIES;
}

}  // namespace VeskLib::Host
