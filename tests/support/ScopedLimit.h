#pragma once

#include <sys/resource.h>

namespace VeskLib::Test {

// Limits a resource of this process (RLIMIT_...) for as long as the object lives. Whatever the
// process writes after its tests, as the counters of a coverage build, is not limited.
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

// The same for the size of files; the process outlives an attempt to write more.
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
