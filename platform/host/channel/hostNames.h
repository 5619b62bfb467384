#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

inline constexpr std::size_t LONGEST_HOST_NAME = 253;

// Returns the form in which names are stored and compared: in lower case, and an IPv6 address in
// brackets. Returns an empty string if `name` is not an address and contains anything but letters,
// digits, "-", "_" and single dots within it.
std::string normaliseHostName(std::string_view name);

// Returns the names that every board answers to.
const std::vector<std::string>& loopbackNames();

}  // namespace VeskLib::Host
