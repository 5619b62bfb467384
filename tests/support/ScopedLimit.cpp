#include "tests/support/ScopedLimit.h"

#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace VeskLib::Test {

ScopedLimit::ScopedLimit(int resource, rlim_t limit) : resource(resource) {
    ::getrlimit(resource, &former);
    const rlimit limited = {limit, former.rlim_max};
    if (::setrlimit(resource, &limited) != 0) {
        throw std::runtime_error("a resource cannot be limited");
    }
}

ScopedLimit::~ScopedLimit() {
    const int reason = errno;
    ::setrlimit(resource, &former);
    errno = reason;
}

ScopedFileSizeLimit::ScopedFileSizeLimit(rlim_t bytes)
    : former(std::signal(SIGXFSZ, SIG_IGN)), limit(RLIMIT_FSIZE, bytes) {
}

ScopedFileSizeLimit::~ScopedFileSizeLimit() {
    std::signal(SIGXFSZ, former);
}

}  // namespace VeskLib::Test
