#pragma once

#include <string_view>

namespace VeskLib::Host {

// Prints ` name="value"` to std::cout, the value escaped.
void printAttribute(const char* name, std::string_view value);

}  // namespace VeskLib::Host
