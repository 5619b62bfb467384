#include "platform/host/text/formatText.h"

#include <cstdio>

namespace VeskLib::Host {

void formatText(char* buffer, std::size_t size, const char* format, int number,
                std::va_list arguments) {
    if (format == nullptr) {
        std::snprintf(buffer, size, "Text %d is missing from the message catalogue.", number);
        return;
    }
    // The format is trusted: catalogues are part of the board's software, and the build checks that
    // all languages have the same conversions.
    std::vsnprintf(buffer, size, format, arguments);
}

}  // namespace VeskLib::Host
