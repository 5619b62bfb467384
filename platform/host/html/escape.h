#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// These functions replace control characters (including line ends), invisible characters and those
// that change the direction of text by visible ones: the pictures of the ASCII controls, and U+FFFD
// for the others. So no text can pass for another, or for two lines. A tab stays, because pages use
// it as white space.

// Returns `text` with only these characters replaced.
std::string makeVisible(std::string_view text);

// Returns `text` escaped for HTML text and quoted attribute values.
std::string escapeHTML(std::string_view text);

// Prints the same to std::cout, without building a string.
void printEscaped(std::string_view text);

// Returns `text` escaped for a quoted JavaScript string, also within a script element.
std::string escapeScript(std::string_view text);

}  // namespace VeskLib::Host
