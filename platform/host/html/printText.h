#pragma once

#include <string_view>

namespace VeskLib::Host {

// Prints to std::cout as it stands, past the stream's own formatting, which takes longer than the
// short texts of a page. A lack of memory is an exception.
void printText(std::string_view text);

}  // namespace VeskLib::Host
