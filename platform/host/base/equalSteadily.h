#pragma once

#include <string_view>

namespace VeskLib::Host {

// Returns true if the texts are equal. The time it takes does not depend on where they differ.
bool equalSteadily(std::string_view one, std::string_view other);

}  // namespace VeskLib::Host
