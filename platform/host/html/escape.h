#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// `text` safe as HTML text and as a quoted attribute value.
std::string escapeHTML(std::string_view text);

// Prints the same without making a text of it.
void printEscaped(std::string_view text);

// `text` safe inside a quoted JavaScript string, also within a script element.
std::string escapeScript(std::string_view text);

}  // namespace VeskLib::Host
