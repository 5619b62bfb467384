#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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
void inPieces(std::string_view text, std::size_t largest,
              const std::function<void(std::string_view)>& take);

// `text` with every `placeholder` replaced.
std::string replaceAll(std::string_view text, std::string_view placeholder,
                       std::string_view replacement);

// Puts the CRC-32 of `bytes` behind them, as files of the board end.
void appendChecksum(std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Fuzz
