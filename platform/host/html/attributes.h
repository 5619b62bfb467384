#pragma once

#include <string_view>

namespace VeskLib::Host {

// The attribute with the script call for a click. Not "onclick", because the page's content
// security policy runs no attributes; the shell's script binds these calls.
inline constexpr const char* CLICK_ATTRIBUTE = "data-click";

// Prints ` name="value"` to std::cout, the value escaped.
void printAttribute(const char* name, std::string_view value);

}  // namespace VeskLib::Host
