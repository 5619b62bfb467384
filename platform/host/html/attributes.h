#pragma once

#include <string_view>

namespace VeskLib::Host {

// The attribute that holds the script call of a click. Not "onclick": a page's policy lets no
// attribute run anything, so that the shell's script binds these calls.
inline constexpr const char* CLICK_ATTRIBUTE = "data-click";

// Prints ` name="value"` to std::cout, the value escaped.
void printAttribute(const char* name, std::string_view value);

}  // namespace VeskLib::Host
