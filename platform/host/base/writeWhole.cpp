#include "platform/host/base/writeWhole.h"

#include <sys/uio.h>

#include <algorithm>
#include <cerrno>

namespace VeskLib::Host {

namespace {

iovec toVector(std::string_view bytes) {
    return {.iov_base = const_cast<char*>(bytes.data()), .iov_len = bytes.size()};
}

}  // namespace

bool writeWhole(int descriptor, std::string_view first, std::string_view second) {
    while (!first.empty() || !second.empty()) {
        const iovec pieces[] = {toVector(first), toVector(second)};
        const ssize_t count = ::writev(descriptor, pieces, 2);
        if (count > 0) {
            const std::size_t ofFirst = std::min(static_cast<std::size_t>(count), first.size());
            first.remove_prefix(ofFirst);
            second.remove_prefix(static_cast<std::size_t>(count) - ofFirst);
        } else if (count == 0) {
            errno = EIO;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace VeskLib::Host
