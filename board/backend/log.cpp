#include "board/backend/log.h"

#include <unistd.h>

#include <cstdio>

namespace VeskLib::Board {

void logLine(const std::string& text) {
    std::string line = "efi_backend: ";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        line += byte < 0x20 || byte == 0x7F ? '?' : c;
    }
    line += '\n';
    // A log that nobody takes any more is no reason to stop serving.
    static_cast<void>(!::write(STDERR_FILENO, line.data(), line.size()));
}

std::string hexadecimal(unsigned int number) {
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "0x%08X", number));
    return text;
}

}  // namespace VeskLib::Board
