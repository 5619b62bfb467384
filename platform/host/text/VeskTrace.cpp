#include <VeskLib/trace/VeskTrace.h>

#include "platform/host/base/SystemPath.h"

#include <VeskLib/getCGIPath.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

namespace VeskLib::trace {

namespace {

// The log and its one predecessor take at most twice this, however many bad requests come.
const off_t LARGEST_FILE = 1024 * 1024;
const std::size_t LONGEST_TEXT = 2048;
const mode_t FILE_MODE = 0640;

std::string timestamp() {
    const std::time_t now = std::time(nullptr);
    std::tm utc = {};
    gmtime_r(&now, &utc);
    char text[sizeof "2026-01-31T23:59:59Z"];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc));
}

// One text stays one line, whatever a request put into it.
std::string escapeControls(const char* text) {
    std::string escaped;
    for (std::size_t i = 0; text[i] != '\0' && i < LONGEST_TEXT; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7F) {
            char code[sizeof "\\xFF"];
            std::snprintf(code, sizeof code, "\\x%02X", byte);
            escaped += code;
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

// Opens the log for appending; -1 when it is not a regular file that can be written.
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

// Puts a full log aside and opens a new one; -1 when it cannot be put aside. The lock keeps two
// processes from doing it one after the other, which would lose the predecessor.
int rotate(int full, const std::string& path) {
    struct stat locked = {};
    struct stat current = {};
    const bool stillCurrent = flock(full, LOCK_EX) == 0 && fstat(full, &locked) == 0 &&
                              lstat(path.c_str(), &current) == 0 && locked.st_ino == current.st_ino;
    const bool stuck = stillCurrent && std::rename(path.c_str(), (path + ".1").c_str()) != 0;
    close(full);
    return stuck ? -1 : openLog(path);
}

}  // namespace

VeskTrace::VeskTrace(unsigned char system, unsigned char subsystem, unsigned short module)
    : system(system), subsystem(subsystem), module(module) {
}

VeskTrace::~VeskTrace() = default;

void VeskTrace::putLog(unsigned char level, const char* text) try {
    const std::string path = getCGIPath(Host::TRACE_FILE);
    int descriptor = openLog(path);
    struct stat status = {};
    if (descriptor >= 0 && fstat(descriptor, &status) == 0 && status.st_size >= LARGEST_FILE) {
        descriptor = rotate(descriptor, path);
    }
    if (descriptor < 0) {
        return;
    }
    char origin[sizeof "255.255.FFFF"];
    std::snprintf(origin, sizeof origin, "%u.%u.%04X", system, subsystem, module);
    const std::string line = timestamp() + " [" + std::to_string(getpid()) + "] " + origin +
                             " level " + std::to_string(level) + ": " + escapeControls(text) + "\n";
    // One write, so that lines of several processes never mix.
    static_cast<void>(!write(descriptor, line.data(), line.size()));
    close(descriptor);
} catch (...) {
    // Out of memory: the request goes on without its trace line.
}

}  // namespace VeskLib::trace
