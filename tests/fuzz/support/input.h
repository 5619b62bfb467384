#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Fuzz {

// Return an input as text or as bytes.
std::string textOf(const std::uint8_t* data, std::size_t size);
std::vector<unsigned char> bytesOf(const std::uint8_t* data, std::size_t size);

// Removes the first line from `text` and returns it without its line feed. Without a line feed, all
// of `text` is the first line.
std::string takeLine(std::string_view& text);

// Calls `take` with `text` in pieces of 1 to `largest` bytes. The sizes are derived from the text,
// so that an input is always split in the same way.
template <typename Take>
void inPieces(std::string_view text, std::size_t largest, const Take& take) {
    std::uint32_t state = static_cast<std::uint32_t>(text.size());
    for (const char character : text.substr(0, 64)) {
        state = state * 31 + static_cast<unsigned char>(character);
    }
    while (!text.empty()) {
        // A linear congruential generator; its low bits vary little and are dropped.
        state = state * 1664525U + 1013904223U;
        const std::size_t wanted = 1 + (state >> 8) % largest;
        const std::string_view piece = text.substr(0, wanted);
        take(piece);
        text.remove_prefix(piece.size());
    }
}

// Returns `text` with every `placeholder` replaced.
std::string replaceAll(std::string_view text, std::string_view placeholder,
                       std::string_view replacement);

// Appends the CRC-32 of `bytes`, with which the board's files end.
void appendChecksum(std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Fuzz
