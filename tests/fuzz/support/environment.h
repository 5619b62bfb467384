#pragma once

#include <string>

namespace VeskLib::Fuzz {

// Gives the request an environment variable. A variable ends at a NUL, and so does `value`.
void setVariable(const char* name, const std::string& value);

// The board's root of this process: made with the first call, named by BOARD_ROOT from then on,
// and removed when the process ends.
void useTemporaryRoot();

}  // namespace VeskLib::Fuzz
