#pragma once

#include <VeskLib/PException.h>

namespace VeskLib::VeskUi {

// The exceptions of the containers. The coded numbers are the platform's; both texts must be
// constant text, because the exception carries only pointers to them.

// `module` is the container's: 19200 for the wrapper, 23296 for the arrays.
PException makeBufferTooSmall(unsigned short module, const char* text);

// `operation` is the collection's operation that found the size wrong.
PException makeDifferentBufferSize(const char* operation);

}  // namespace VeskLib::VeskUi
