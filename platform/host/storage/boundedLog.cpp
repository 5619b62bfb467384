#include "platform/host/storage/boundedLog.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace VeskLib::Host {

namespace {

const off_t LARGEST_FILE = 1024 * 1024;
const mode_t FILE_MODE = 0600;

// Opens the log for appending. Returns -1 if it is not a regular file or cannot be opened.
int openLog(const std::string& path) {
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
             FILE_MODE);
    struct stat status = {};
    if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

// Renames a full log and opens a new one. Returns -1 if the log cannot be renamed. The lock
// prevents two processes from rotating one after the other, which would lose the older log.
int rotate(int full, const std::string& path) {
    const std::string former = path + ".1";
    struct stat locked = {};
    struct stat current = {};
    const bool stillCurrent = flock(full, LOCK_EX) == 0 && fstat(full, &locked) == 0 &&
                              lstat(path.c_str(), &current) == 0 && locked.st_ino == current.st_ino;
    const bool stuck = stillCurrent && std::rename(path.c_str(), former.c_str()) != 0;
    close(full);
    return stuck ? -1 : openLog(path);
}

}  // namespace

void appendToLog(const std::string& path, const std::string& text) {
    int descriptor = openLog(path);
    struct stat status = {};
    if (descriptor >= 0 && fstat(descriptor, &status) == 0 && status.st_size >= LARGEST_FILE) {
        descriptor = rotate(descriptor, path);
    }
    if (descriptor < 0) {
        return;
    }
    static_cast<void>(!write(descriptor, text.data(), text.size()));
    close(descriptor);
}

}  // namespace VeskLib::Host
