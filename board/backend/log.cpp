#include "board/backend/log.h"

#include <unistd.h>

#include <cstdio>

namespace VeskLib::Board {

namespace {

// Ignores errors: the back-end must go on if its log cannot be written.
void write(const char* text, std::size_t size) {
    static_cast<void>(!::write(STDERR_FILENO, text, size));
}

}  // namespace

void logLine(const std::string& text) {
    std::string line = "efi_backend: ";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        line += byte < 0x20 || byte == 0x7F ? '?' : c;
    }
    line += '\n';
    write(line.data(), line.size());
}

void logFailure(const char* what, const char* reason) noexcept {
    try {
        logLine(std::string(what) + reason);
    } catch (const std::exception&) {
        static const char LINE[] = "efi_backend: out of memory\n";
        write(LINE, sizeof LINE - 1);
    }
}

void logFailure(const char* what, const std::exception& failure) noexcept {
    logFailure(what, failure.what());
}

std::string hexadecimal(unsigned int number) {
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "0x%08X", number));
    return text;
}

}  // namespace VeskLib::Board
