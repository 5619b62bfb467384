#pragma once

namespace VeskLib::VeskUi {

// The size of the largest configuration file that the board accepts, in bytes. CMakeLists.txt reads
// the number from here for the pages' script and the texts.
inline constexpr unsigned int LARGEST_UPLOAD = 393216;

}  // namespace VeskLib::VeskUi
