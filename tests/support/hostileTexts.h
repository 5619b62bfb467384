#pragma once

#include <string>
#include <vector>

namespace VeskLib::Test {

// Texts that an operator, a file or the back-end may put into a page, and which must not leave
// their place in it.
const std::vector<std::string>& hostileTexts();

// Those without control characters, ends of lines and characters that turn the direction of a text:
// how these are shown is for each platform to decide, the others are shown as they are.
const std::vector<std::string>& printableTexts();

}  // namespace VeskLib::Test
