#include "platform/host/base/randomText.h"

#include "platform/host/base/platformException.h"

#include <sys/random.h>

namespace VeskLib::Host {

std::string makeRandomText(std::size_t byteCount) {
    static const char DIGITS[] = "0123456789abcdef";
    unsigned char bytes[32];
    if (byteCount > sizeof bytes ||
        getrandom(bytes, byteCount, 0) != static_cast<ssize_t>(byteCount)) {
        throw makePlatformException(NO_RANDOM_NUMBERS, "The kernel gives no random numbers");
    }
    std::string text;
    for (std::size_t i = 0; i < byteCount; ++i) {
        text += DIGITS[bytes[i] >> 4];
        text += DIGITS[bytes[i] & 0xF];
    }
    return text;
}

}  // namespace VeskLib::Host
