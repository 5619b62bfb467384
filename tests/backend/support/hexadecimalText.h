#pragma once

#include "tests/unit/support/wireBytes.h"

#include <string>

namespace VeskLib::Test {

// The bytes written as pairs of hexadecimal digits; blanks between pairs are passed over.
Bytes fromHexadecimal(const std::string& text);

// The bytes as pairs of hexadecimal digits with a blank between pairs.
std::string toHexadecimal(const Bytes& bytes);

}  // namespace VeskLib::Test
