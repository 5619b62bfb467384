#pragma once

#include <string_view>

namespace VeskLib::Host {

// Prints `text` to std::cout unchanged. Bypasses the stream's formatting, which takes longer than
// writing the short texts of a page. Throws if memory is exhausted.
void printText(std::string_view text);

}  // namespace VeskLib::Host
