#pragma once

#include <string>

namespace VeskLib {

// The path under which a CGI program reaches the board's file `path` (absolute).
std::string getCGIPath(const char* path);

}  // namespace VeskLib
