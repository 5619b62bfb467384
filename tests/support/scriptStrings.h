#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// Returns the string literals that `script` passes to `function` as its first argument, in order.
// Fails the test if a literal is not terminated on its line.
std::vector<std::string> stringArgumentsOf(std::string_view script, std::string_view function);

// Returns `script` without comments and with empty string literals. The result changes if a text
// that is not escaped ends its literal.
std::string withoutStrings(std::string_view script);

}  // namespace VeskLib::Test
