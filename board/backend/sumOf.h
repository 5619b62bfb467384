#pragma once

#include <string>

namespace VeskLib::Board {

// The SHA-256 sum of a text, as 64 hexadecimal digits.
std::string sumOf(const std::string& text);

}  // namespace VeskLib::Board
