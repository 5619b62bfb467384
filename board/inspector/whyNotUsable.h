#pragma once

#include <string>
#include <vector>

namespace VeskLib::Board {

// Returns why decode() refuses these bytes as a configuration file.
std::string whyNotUsable(const std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Board
