#pragma once

#include <string>
#include <vector>

namespace VeskLib::Board {

// Returns what keeps these bytes, which decode() refuses, from being a configuration file.
std::string whyNotUsable(const std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Board
