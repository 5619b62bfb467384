#pragma once

#include <cstdarg>
#include <string>

namespace VeskLib::Host {

// Formats the printf-style `format` into `buffer`, which has `size` bytes. The text is truncated to
// fit and always ends in NUL. If `format` is null, the text contains `number`, so that a missing
// catalogue is noticed.
void formatText(char* buffer, std::size_t size, const char* format, int number,
                std::va_list arguments);

}  // namespace VeskLib::Host
