#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Control characters, line ends among them, and those that show nothing or turn the direction of
// the text around them are printed as visible ones: the pictures of the ASCII controls, and U+FFFD.
// So no text looks like another, or like two lines. A tab stays: it is white space, and pages use
// it.

// `text` with these characters made visible, and nothing else changed.
std::string makeVisible(std::string_view text);

// `text` safe as HTML text and as a quoted attribute value.
std::string escapeHTML(std::string_view text);

// Prints the same without making a text of it.
void printEscaped(std::string_view text);

// `text` safe inside a quoted JavaScript string, also within a script element.
std::string escapeScript(std::string_view text);

}  // namespace VeskLib::Host
