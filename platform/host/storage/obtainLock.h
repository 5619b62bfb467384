#pragma once

#include <string>

namespace VeskLib::Host {

// Takes an exclusive lock on the file `path`, which is created when absent (mode 0600), waiting
// for at most `milliseconds`; 0 does not wait. The descriptor that holds the lock; closing it lets
// go of the lock, and so does the end of the process.
//
// Throws PException: LOCK_NOT_OBTAINED when another holds the lock for too long, LOCK_NOT_USABLE
// when `path` cannot be opened, is a link or no regular file, or belongs to another user.
int obtainLock(const std::string& path, int milliseconds);

}  // namespace VeskLib::Host
