#pragma once

#include <string>

namespace VeskLib::Test {

// A code point as UTF-8.
std::string encodeUTF8(unsigned long code);

}  // namespace VeskLib::Test
