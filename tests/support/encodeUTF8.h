#pragma once

#include <string>

namespace VeskLib::Test {

// A code point below 0x10000 as UTF-8.
std::string encodeUTF8(unsigned long code);

}  // namespace VeskLib::Test
