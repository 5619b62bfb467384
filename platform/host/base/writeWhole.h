#pragma once

#include <string_view>

namespace VeskLib::Host {

// Writes all the bytes of both texts, in as few pieces as the system takes. False when it takes no
// more; errno then tells why. Takes no memory.
bool writeWhole(int descriptor, std::string_view first, std::string_view second = {});

}  // namespace VeskLib::Host
