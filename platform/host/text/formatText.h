#pragma once

#include <cstdarg>
#include <string>

namespace VeskLib::Host {

// Formats the printf-style `format` into `buffer` of `size` bytes, cut to fit and always ending
// in NUL. A null `format` gives a text that names `number`, so that a missing catalogue is seen.
void formatText(char* buffer, std::size_t size, const char* format, int number,
                std::va_list arguments);

}  // namespace VeskLib::Host
