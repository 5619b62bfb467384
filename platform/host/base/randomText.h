#pragma once

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// `byteCount` random bytes of the kernel, as lower-case hexadecimal digits; at most 32 bytes.
// Throws PException (NO_RANDOM_NUMBERS) when the kernel gives none.
std::string makeRandomText(std::size_t byteCount);

}  // namespace VeskLib::Host
