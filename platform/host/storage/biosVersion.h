#pragma once

#include <string_view>

namespace VeskLib::Host {

// Returns false if `version` begins with "-", as it does for a partition without a home board.
bool isKnownVersion(std::string_view version);

// Returns true if a partition with BIOS version `target` accepts a configuration of version `file`:
// if the numbers before the first dot are equal, or either version is unknown.
bool fitTogether(std::string_view file, std::string_view target);

}  // namespace VeskLib::Host
