#pragma once

#include <VeskLib/PException.h>

namespace VeskLib::VeskUi {

// The exceptions that the containers throw. Their numbers are defined by the platform. Pass string
// literals, because the exceptions contain only pointers to the texts.

// Module numbers of the containers.
inline constexpr unsigned short WRAPPER_MODULE = 19200;
inline constexpr unsigned short ARRAY_MODULE = 23296;

// Returns the exception for a buffer that is too small for the container of `module`.
PException makeBufferTooSmall(unsigned short module, const char* text);

// Returns the exception for a size that does not fit the content. `operation` is the function
// that throws it.
PException makeDifferentBufferSize(const char* operation);

}  // namespace VeskLib::VeskUi
