#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

inline constexpr std::size_t LONGEST_HOST_NAME = 253;

// The shape in which names are kept and compared: lower case, an IPv6 address between brackets.
// Empty for what is no name: it has letters, digits, "-", "_" and single dots within it.
std::string normaliseHostName(std::string_view name);

// The names that every board answers to.
const std::vector<std::string>& loopbackNames();

}  // namespace VeskLib::Host
