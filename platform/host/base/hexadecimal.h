#pragma once

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// Returns the bytes as hexadecimal text: two lowercase digits for each.
std::string toHexadecimal(const unsigned char* bytes, std::size_t size);

}  // namespace VeskLib::Host
