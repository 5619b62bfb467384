#pragma once

#include <string_view>

namespace VeskLib::Host {

// Prints to std::cout as it stands. Without the stream's own formatting, which takes longer than
// the short texts of a page; and a lack of memory is an exception, not a state of the stream that
// nobody asks for.
void printText(std::string_view text);

}  // namespace VeskLib::Host
