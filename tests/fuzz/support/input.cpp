#include "tests/fuzz/support/input.h"

#include "data/WireCursor.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <algorithm>

namespace VeskLib::Fuzz {

std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

std::vector<unsigned char> bytesOf(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

std::string takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::string replaceAll(std::string_view text, std::string_view placeholder,
                       std::string_view replacement) {
    std::string replaced;
    for (std::size_t place = text.find(placeholder); place != std::string_view::npos;
         place = text.find(placeholder)) {
        replaced.append(text.substr(0, place)).append(replacement);
        text.remove_prefix(place + placeholder.size());
    }
    return replaced.append(text);
}

void appendChecksum(std::vector<unsigned char>& bytes) {
    const std::uint32_t checksum = Host::crc32(bytes.data(), bytes.size());
    bytes.resize(bytes.size() + sizeof checksum);
    VeskUi::WireWriter(bytes.data() + bytes.size() - sizeof checksum, sizeof checksum)
        .writeU32(checksum);
}

}  // namespace VeskLib::Fuzz
