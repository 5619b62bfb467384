#pragma once

#include "tests/unit/support/wireBytes.h"

#include <string>

namespace VeskLib::Test {

// Returns the bytes written as pairs of hexadecimal digits; ignores blanks between pairs.
Bytes fromHexadecimal(const std::string& text);

// Returns the bytes as pairs of hexadecimal digits, separated by blanks.
std::string toHexadecimal(const Bytes& bytes);

}  // namespace VeskLib::Test
