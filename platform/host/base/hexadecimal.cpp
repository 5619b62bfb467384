#include "platform/host/base/hexadecimal.h"

namespace VeskLib::Host {

std::string toHexadecimal(const unsigned char* bytes, std::size_t size) {
    static const char DIGITS[] = "0123456789abcdef";
    std::string text(2 * size, '0');
    for (std::size_t i = 0; i < size; ++i) {
        text[2 * i] = DIGITS[bytes[i] >> 4];
        text[2 * i + 1] = DIGITS[bytes[i] & 0xF];
    }
    return text;
}

}  // namespace VeskLib::Host
