#include "platform/host/base/platformException.h"

namespace VeskLib::Host {

PException makePlatformException(PlatformError error, const char* text) {
    return {1, 1, 1, 1, error, 20019, reinterpret_cast<long>(text), 0, 0, 0, 0, 0, 0, 0};
}

}  // namespace VeskLib::Host
