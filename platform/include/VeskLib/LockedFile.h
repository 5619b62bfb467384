#pragma once

#include <string>

namespace VeskLib {

// Holds an exclusive lock on the file `path`, shared by all processes, from construction to
// destruction. The file is created when absent and is never removed. The lock of a process that
// dies is released.
//
// The constructor throws PException when the lock cannot be had: not within the platform's time
// limit, or because `path` is not a regular file of the program's own.
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
