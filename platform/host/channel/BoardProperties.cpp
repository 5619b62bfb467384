#include "platform/host/channel/BoardProperties.h"

#include <charconv>
#include <string>
#include <string_view>

namespace VeskLib::Host {

namespace {

const std::string_view MAX_PARTITIONS = "max_partitions=";

bool readNumber(std::string_view text, unsigned int& number) {
    unsigned int read = 0;
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, read);
    if (result.ec != std::errc() || result.ptr != end) {
        return false;
    }
    number = read;
    return true;
}

}  // namespace

std::vector<unsigned char> encode(const BoardProperties& properties) {
    std::string text(MAX_PARTITIONS);
    text += std::to_string(properties.maxPartitions) + "\n";
    return {text.begin(), text.end()};
}

bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties) {
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        if (line.starts_with(MAX_PARTITIONS)) {
            return readNumber(line.substr(MAX_PARTITIONS.size()), properties.maxPartitions);
        }
    }
    return false;
}

}  // namespace VeskLib::Host
