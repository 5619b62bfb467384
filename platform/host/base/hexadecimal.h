#pragma once

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// Returns two lowercase digits for each byte.
std::string toHexadecimal(const unsigned char* bytes, std::size_t size);

}  // namespace VeskLib::Host
