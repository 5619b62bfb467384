#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// The values of the string literals that `script` hands to `function` as its first argument, in
// their order. A literal that has no end on its line is a test failure.
std::vector<std::string> stringArgumentsOf(std::string_view script, std::string_view function);

// `script` with its string literals emptied and its comments left out: what a text that leaves
// its literal would change.
std::string withoutStrings(std::string_view script);

}  // namespace VeskLib::Test
