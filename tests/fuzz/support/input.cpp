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

void inPieces(std::string_view text, std::size_t largest,
              const std::function<void(std::string_view)>& take) {
    std::uint32_t state = static_cast<std::uint32_t>(text.size());
    for (const char character : text.substr(0, 64)) {
        state = state * 31 + static_cast<unsigned char>(character);
    }
    while (!text.empty()) {
        // A linear congruential generator; its high bits are the ones that vary.
        state = state * 1664525U + 1013904223U;
        const std::size_t wanted = 1 + (state >> 8) % largest;
        const std::string_view piece = text.substr(0, wanted);
        take(piece);
        text.remove_prefix(piece.size());
    }
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
