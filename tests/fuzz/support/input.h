#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Fuzz {

// What a target is given, as text and as bytes.
std::string textOf(const std::uint8_t* data, std::size_t size);
std::vector<unsigned char> bytesOf(const std::uint8_t* data, std::size_t size);

// Takes the first line off `text` and returns it without its line feed; all when there is none.
std::string takeLine(std::string_view& text);

// Calls `take` with `text` in pieces of 1 to `largest` bytes. The sizes follow from the text, so
// that an input always comes in the same pieces.
template <typename Take>
void inPieces(std::string_view text, std::size_t largest, const Take& take) {
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

// `text` with every `placeholder` replaced.
std::string replaceAll(std::string_view text, std::string_view placeholder,
                       std::string_view replacement);

// Puts the CRC-32 of `bytes` behind them, as files of the board end.
void appendChecksum(std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Fuzz
