#include "platform/host/base/Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace VeskLib::Host {

Descriptor::~Descriptor() {
    const int reason = errno;
    if (isOpen()) {
        ::close(number);
    }
    errno = reason;
}

}  // namespace VeskLib::Host
