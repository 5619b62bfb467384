#pragma once

#include <string_view>

namespace VeskLib::Host {

// Returns whether two texts are equal, in a time that does not tell where they differ.
bool equalSteadily(std::string_view one, std::string_view other);

}  // namespace VeskLib::Host
