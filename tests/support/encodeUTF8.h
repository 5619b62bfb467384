#pragma once

#include <string>

namespace VeskLib::Test {

// Returns a code point encoded as UTF-8.
std::string encodeUTF8(unsigned long code);

}  // namespace VeskLib::Test
