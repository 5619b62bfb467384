#pragma once

#include "tests/support/ScopedLimit.h"

#include <pthread.h>

namespace VeskLib::Test {

// While an object exists, starting a thread fails, because the default stack size exceeds memory.
class NoThreads {
public:
    NoThreads();
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
    ~NoThreads();

private:
    pthread_attr_t original;
};

// While an object exists, the process cannot open descriptors.
class NoDescriptors : public ScopedLimit {
public:
    NoDescriptors();
};

}  // namespace VeskLib::Test
