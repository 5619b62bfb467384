#include "tests/backend/support/failures.h"

#include <cstddef>
#include <limits>

namespace VeskLib::Test {

namespace {

// Fewer than are open already, but enough for poll(), which rejects more descriptors than the
// limit.
const rlim_t STANDARD_STREAMS = 3;

const std::size_t PAGE = 0x10000;
const std::size_t ENORMOUS = std::numeric_limits<std::size_t>::max() / 8 * 7 / PAGE * PAGE;

}  // namespace

NoThreads::NoThreads() {
    pthread_attr_t enormous;
    ::pthread_getattr_default_np(&original);
    ::pthread_getattr_default_np(&enormous);
    ::pthread_attr_setstacksize(&enormous, ENORMOUS);
    ::pthread_setattr_default_np(&enormous);
    ::pthread_attr_destroy(&enormous);
}

NoThreads::~NoThreads() {
    ::pthread_setattr_default_np(&original);
    ::pthread_attr_destroy(&original);
}

NoDescriptors::NoDescriptors() : ScopedLimit(RLIMIT_NOFILE, STANDARD_STREAMS) {
}

}  // namespace VeskLib::Test
