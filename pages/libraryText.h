#pragma once

#include <VeskLib/lmsg_getmsg.h>

#include <string>

namespace VeskLib::Gui {

// The minimum size of the buffer for lmsg_getmsg(), in bytes.
inline constexpr unsigned int LIBRARY_TEXT_SIZE = 256;

// Returns text `number` of the message library with the given arguments, truncated to 255 bytes.
template <typename... Arguments>
std::string libraryText(int number, Arguments... arguments) {
    char buffer[LIBRARY_TEXT_SIZE];
    return lmsg_getmsg(number, buffer, arguments...);
}

}  // namespace VeskLib::Gui
