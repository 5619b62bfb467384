#pragma once

#include <string>
#include <vector>

namespace VeskLib::Test {

// Texts that an operator, a file or the back-end may put into a page, and which must not leave
// their place in it.
const std::vector<std::string>& hostileTexts();

}  // namespace VeskLib::Test
