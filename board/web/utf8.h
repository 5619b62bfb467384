#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Board {

bool isASCII(std::string_view text);

// Returns true if `text` is well-formed UTF-8 without control characters (C0, DEL and C1).
bool isPrintableUTF8(std::string_view text);

// Returns `text` with each character outside ASCII replaced by one `replacement`. `text` must be
// well-formed UTF-8.
std::string replaceNonASCII(std::string_view text, char replacement);

// Returns `text` with every byte but ASCII letters, digits, "-", "." and "_" encoded as "%" and two
// hexadecimal digits.
std::string percentEncode(std::string_view text);

}  // namespace VeskLib::Board
