#pragma once

#include <string>

namespace VeskLib::Fuzz {

// Sets an environment variable of the request. `value` is cut at the first NUL.
void setVariable(const char* name, const std::string& value);

// Makes sure that the process has a temporary board root: the first call creates it and sets
// BOARD_ROOT. It is removed when the process ends.
void useTemporaryRoot();

}  // namespace VeskLib::Fuzz
