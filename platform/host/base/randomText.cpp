#include "platform/host/base/randomText.h"

#include "platform/host/base/platformException.h"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>

namespace VeskLib::Host {

std::string makeRandomText(std::size_t byteCount) {
    static const char DIGITS[] = "0123456789abcdef";
    unsigned char bytes[32];
    ssize_t count = -1;
    do {
        count = getrandom(bytes, std::min(byteCount, sizeof bytes), 0);
    } while (count < 0 && errno == EINTR);
    if (count != static_cast<ssize_t>(byteCount)) {
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
