#pragma once

#include <string>

namespace VeskLib {

// Holds an exclusive lock on the file `path`, against all processes, from construction to
// destruction. Creates the file if it does not exist; never removes it. The lock is also released
// when the process ends.
//
// The constructor throws PException if the lock is not free within the platform's time limit, or
// if `path` is not a regular file of the program's own.
class LockedFile {
public:
    explicit LockedFile(const std::string& path);
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile();

private:
    int descriptor;
};

}  // namespace VeskLib
