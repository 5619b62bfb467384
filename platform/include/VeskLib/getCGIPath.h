#pragma once

#include <string>

namespace VeskLib {

// Returns the path by which a CGI program opens the board's file `path`, which is absolute.
std::string getCGIPath(const char* path);

}  // namespace VeskLib
