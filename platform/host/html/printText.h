#pragma once

#include <string_view>

namespace VeskLib::Host {

// Prints `text` to std::cout unchanged. Bypasses the stream's formatting, which would take longer
// than a page's short texts themselves. Throws if memory is exhausted.
void printText(std::string_view text);

}  // namespace VeskLib::Host
