#pragma once

#include <sys/resource.h>

namespace VeskLib::Test {

// Lowers the soft limit of a resource (RLIMIT_...) of this process. The destructor restores it, so
// that output after the tests, such as coverage counters, is not limited. The constructor throws
// std::runtime_error if the limit cannot be set.
class ScopedLimit {
public:
    ScopedLimit(int resource, rlim_t limit);
    ScopedLimit(const ScopedLimit&) = delete;
    ScopedLimit& operator=(const ScopedLimit&) = delete;
    ~ScopedLimit();

private:
    int resource;
    rlimit former = {};
};

// Limits the size of files and ignores SIGXFSZ, so that a write beyond the limit fails without
// ending the process.
class ScopedFileSizeLimit {
public:
    explicit ScopedFileSizeLimit(rlim_t bytes);
    ScopedFileSizeLimit(const ScopedFileSizeLimit&) = delete;
    ScopedFileSizeLimit& operator=(const ScopedFileSizeLimit&) = delete;
    ~ScopedFileSizeLimit();

private:
    void (*former)(int);
    ScopedLimit limit;
};

}  // namespace VeskLib::Test
