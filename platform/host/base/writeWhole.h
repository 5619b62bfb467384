#pragma once

#include <string_view>

namespace VeskLib::Host {

// Writes all bytes of both texts with as few system calls as possible. Returns false, with errno
// set, if not all could be written. Allocates no memory.
bool writeWhole(int descriptor, std::string_view first, std::string_view second = {});

}  // namespace VeskLib::Host
