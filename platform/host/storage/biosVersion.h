#pragma once

#include <string_view>

namespace VeskLib::Host {

// Returns false for the version of a partition without a home board, which begins with "-".
bool isKnownVersion(std::string_view version);

// Returns true if a partition of the BIOS version `target` takes a configuration of the version
// `file`: if the numbers before the first dot are the same, or either version is not known.
bool fitTogether(std::string_view file, std::string_view target);

}  // namespace VeskLib::Host
