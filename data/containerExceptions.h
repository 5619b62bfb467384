#pragma once

#include <VeskLib/PException.h>

namespace VeskLib::VeskUi {

// The exceptions of the containers. The coded numbers are the platform's; both texts must be
// constant text, because the exception carries only pointers to them.

inline constexpr unsigned short WRAPPER_MODULE = 19200;
inline constexpr unsigned short ARRAY_MODULE = 23296;

// `module` is the container's.
PException makeBufferTooSmall(unsigned short module, const char* text);

// `operation` is the collection's operation that found the size wrong.
PException makeDifferentBufferSize(const char* operation);

}  // namespace VeskLib::VeskUi
