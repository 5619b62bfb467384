#pragma once

#include <string>

namespace VeskLib::Host {

// Takes an exclusive lock on the file `path`, and creates the file (mode 0600) if it does not
// exist. Waits for at most `milliseconds`; 0 does not wait. Returns a descriptor that the caller
// must close to release the lock; the end of the process also releases it.
//
// Throws PException: LOCK_NOT_OBTAINED if the lock is not free in time, LOCK_NOT_USABLE if `path`
// cannot be opened, is a symbolic link or not a regular file, or belongs to another user.
int obtainLock(const std::string& path, int milliseconds);

}  // namespace VeskLib::Host
