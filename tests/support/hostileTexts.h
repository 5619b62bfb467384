#pragma once

#include <string>
#include <vector>

namespace VeskLib::Test {

// Texts that an operator, a file or the back-end might put into a page. They must be escaped there,
// so that they cannot change its markup or its scripts.
const std::vector<std::string>& hostileTexts();

// The hostile texts without control characters, line breaks and characters that change the
// direction of text. Every platform shows these unchanged; how it shows the others is up to the
// platform.
const std::vector<std::string>& printableTexts();

}  // namespace VeskLib::Test
