#include "platform/host/base/randomText.h"

#include "platform/host/base/hexadecimal.h"
#include "platform/host/base/platformException.h"

#include <sys/random.h>

#include <algorithm>
#include <cerrno>

namespace VeskLib::Host {

std::string makeRandomText(std::size_t byteCount) {
    unsigned char bytes[32];
    ssize_t count = -1;
    do {
        count = getrandom(bytes, std::min(byteCount, sizeof bytes), 0);
    } while (count < 0 && errno == EINTR);
    if (count != static_cast<ssize_t>(byteCount)) {
        throw makePlatformException(NO_RANDOM_NUMBERS, "The kernel gives no random numbers");
    }
    return toHexadecimal(bytes, byteCount);
}

}  // namespace VeskLib::Host
