#include "platform/host/storage/obtainLock.h"

#include "platform/host/base/platformException.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>

namespace VeskLib::Host {

namespace {

// Short enough not to be noticed, long enough that waiting takes almost no processor time.
const int POLL_MILLISECONDS = 10;

int openLockFile(const std::string& path) {
    const int descriptor =
        ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600);
    if (descriptor < 0) {
        throw makePlatformException(LOCK_NOT_USABLE, "obtainLock: open");
    }
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid()) {
        ::close(descriptor);
        throw makePlatformException(LOCK_NOT_USABLE, "obtainLock: not a regular file of ours");
    }
    return descriptor;
}

void pauseShortly() {
    const timespec pause = {0, POLL_MILLISECONDS * 1000000L};
    ::nanosleep(&pause, nullptr);
}

}  // namespace

int obtainLock(const std::string& path, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const int descriptor = openLockFile(path);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    // Polls, because flock() has no timeout, and an alarm signal would affect the caller.
    while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const bool contended = errno == EWOULDBLOCK || errno == EINTR;
        if (!contended || Clock::now() >= end) {
            ::close(descriptor);
            throw makePlatformException(contended ? LOCK_NOT_OBTAINED : LOCK_NOT_USABLE,
                                        "obtainLock: flock");
        }
        pauseShortly();
    }
    return descriptor;
}

}  // namespace VeskLib::Host
