#include "platform/host/audit/AuditLog.h"

#include "platform/host/audit/AuditLimits.h"
#include "platform/host/audit/systemLog.h"
#include "platform/host/base/Descriptor.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/writeWhole.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/channel/FrameStream.h"
#include "platform/host/storage/files.h"
#include "platform/host/storage/obtainLock.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

namespace VeskLib::Host {

namespace {

const int WAIT_MILLISECONDS = 5000;
const long long LARGEST_FILE = 1024 * 1024;
const std::size_t LARGEST_LIMITS = 256 * 1024;
const mode_t FILE_MODE = 0600;

[[noreturn]] void fail(const char* what) {
    throw makePlatformException(AUDIT_NOT_WRITTEN, what);
}

int holdLog(const Deadline& deadline) {
    try {
        return obtainLock(getCGIPath(AUDIT_LOCK), deadline.remainingMilliseconds());
    } catch (const PException&) {
        fail("The audit log cannot be locked");
    }
}

// Returns true if the last line is incomplete, as a power cut may leave it.
bool endsWithinLine(int descriptor, long long size) {
    char last = '\n';
    if (size > 0 && ::pread(descriptor, &last, 1, size - 1) != 1) {
        fail("The audit log cannot be read");
    }
    return last != '\n';
}

bool syncFolder(const std::string& path) {
    const Descriptor folder(
        ::open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.isOpen() && (::fsync(folder.get()) == 0 || errno == EINVAL);
}

// Returns empty properties if they cannot be read; the line is then written without the board's
// name.
BoardProperties readProperties() {
    try {
        return readBoardProperties();
    } catch (...) {
        return {};
    }
}

AuditLimits loadLimits() {
    std::vector<unsigned char> bytes;
    if (!readFile(getCGIPath(AUDIT_COUNTS), LARGEST_LIMITS, bytes)) {
        return {};
    }
    return AuditLimits::load({bytes.begin(), bytes.end()});
}

// Not synced: a power cut loses the counts of one period.
void saveLimits(const AuditLimits& limits) {
    const Descriptor file(::open(getCGIPath(AUDIT_COUNTS).c_str(),
                                 O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                                 FILE_MODE));
    if (file.isOpen()) {
        static_cast<void>(writeWhole(file.get(), limits.save()));
    }
}

}  // namespace

AuditLog::AuditLog(std::size_t reserve) : AuditLog(reserve, Deadline(WAIT_MILLISECONDS)) {
}

AuditLog::AuditLog(std::size_t reserve, const Deadline& deadline)
    : path(getCGIPath(AUDIT_LOG)), turn(deadline), lock(holdLog(deadline)) {
    try {
        open(reserve);
        AuditLimits limits = loadLimits();
        const std::vector<AuditEvent> reports = limits.takeReports(std::time(nullptr));
        for (const AuditEvent& report : reports) {
            append(report);
        }
        if (!reports.empty()) {
            saveLimits(limits);
        }
    } catch (...) {
        ::close(descriptor);
        ::close(lock);
        throw;
    }
}

AuditLog::~AuditLog() {
    ::close(descriptor);
    ::close(lock);
}

void AuditLog::open(std::size_t reserve) {
    const bool isNew = ::access(path.c_str(), F_OK) != 0;
    descriptor = ::open(
        path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, FILE_MODE);
    struct stat status = {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid() || (isNew && !syncFolder(path))) {
        fail("The audit log cannot be opened");
    }
    size = status.st_size;
    if (size >= LARGEST_FILE) {
        rotate();
        open(reserve);
        return;
    }
    if (endsWithinLine(descriptor, size)) {
        if (!writeWhole(descriptor, "\n")) {
            fail("The audit log cannot be written");
        }
        ++size;
    }
    // Not every file system can reserve space; a full disk then shows only when a line is written.
    if (reserve != 0 &&
        ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, size, static_cast<off_t>(reserve)) != 0 &&
        errno != EOPNOTSUPP && errno != ENOSYS) {
        fail("There is no room for the audit log");
    }
}

void AuditLog::rotate() {
    // Frees reserved space that was not used.
    static_cast<void>(!::ftruncate(descriptor, size));
    ::close(descriptor);
    descriptor = -1;
    for (int number = AUDIT_FORMER_FILES; number > 0; --number) {
        const std::string younger = number == 1 ? path : path + "." + std::to_string(number - 1);
        const std::string older = path + "." + std::to_string(number);
        if (std::rename(younger.c_str(), older.c_str()) != 0 && errno != ENOENT) {
            fail("The audit log cannot be rotated");
        }
    }
}

void AuditLog::append(const AuditEvent& event) {
    const BoardProperties board = readProperties();
    const std::string line = encode(event, std::chrono::system_clock::now(), board.name);
    if (!writeWhole(descriptor, line) || ::fdatasync(descriptor) != 0) {
        static_cast<void>(!::ftruncate(descriptor, size));
        fail("The audit log cannot be written");
    }
    size += static_cast<long long>(line.size());
    sendToSystemLog(board.syslogSocket, line);
}

void AuditLog::appendLimited(const AuditEvent& event) {
    AuditLimits limits = loadLimits();
    if (limits.admit(event, std::time(nullptr))) {
        append(event);
    }
    saveLimits(limits);
}

void record(const AuditEvent& event) {
    AuditLog(0).append(event);
}

void recordRefusal(const AuditEvent& event) noexcept {
    try {
        AuditLog(0).appendLimited(event);
    } catch (...) {
        trace::VeskTrace(1, 1, 1).putLog(0, "A refusal cannot be written to the audit log");
    }
}

}  // namespace VeskLib::Host
