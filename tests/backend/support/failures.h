#pragma once

#include "tests/support/ScopedLimit.h"

#include <pthread.h>

namespace VeskLib::Test {

// While it lives, no thread can be started: each would get a stack that fits into no memory.
class NoThreads {
public:
    NoThreads();
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
    ~NoThreads();

private:
    pthread_attr_t original;
};

// While it lives, the process gets no new descriptor.
class NoDescriptors : public ScopedLimit {
public:
    NoDescriptors();
};

}  // namespace VeskLib::Test
