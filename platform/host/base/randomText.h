#pragma once

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// Returns `byteCount` (at most 32) random bytes from the kernel as lowercase hexadecimal digits.
// Throws PException (NO_RANDOM_NUMBERS) if the kernel does not supply them.
std::string makeRandomText(std::size_t byteCount);

}  // namespace VeskLib::Host
