#include "platform/host/web/sessionFiles.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/web/UploadFile.h"
#include "platform/host/web/refusedPage.h"
#include "platform/host/web/requestSession.h"

#include <VeskLib/LockedFile.h>
#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>

namespace VeskLib::Host {

namespace {

// Identifies a staged file: another upload has another inode or time.
class Staged {
public:
    explicit Staged(const std::optional<struct stat>& status)
        : present(status),
          number(status ? status->st_ino : 0),
          changed(status ? status->st_mtim : timespec()) {}

    bool isPresent() const { return present; }
    bool operator==(const Staged& other) const {
        return present == other.present && number == other.number &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }

private:
    bool present;
    ino_t number;
    timespec changed;
};

// Unset if the request was refused before, and so changed nothing.
std::optional<Staged> stagedBefore;

unsigned int uploadsBefore = 0;

bool wasUploaded() {
    return UploadFile::namedFiles() != uploadsBefore;
}

std::string pathOf(const char* file) {
    return getCGIPath(file) + requestSession()->session.identifier;
}

// Returns nullopt if there is nothing at `path`. Throws PException if that cannot be determined.
std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) == 0) {
        return status;
    }
    if (errno != ENOENT) {
        throw makePlatformException(FILE_NOT_READABLE,
                                    "The status of a session's file cannot be read");
    }
    return std::nullopt;
}

// The same, but throws PException if the file is not the board's own.
std::optional<struct stat> ownStatusOf(const std::string& path) {
    const std::optional<struct stat> status = statusOf(path);
    if (status &&
        (!S_ISREG(status->st_mode) || status->st_uid != ::geteuid() || status->st_nlink != 1)) {
        trace::VeskTrace(1, 1, 1).putLog(0, ("Not a file of the board's own: " + path).c_str());
        throw makePlatformException(SESSION_FILE_REFUSED, "A session's file is refused");
    }
    return status;
}

void removeStaged() {
    const LockedFile lock(getCGIPath(STAGING_LOCK_FILE));
    static_cast<void>(std::remove(pathOf(STAGING_FILE).c_str()));
}

void removeForbiddenFiles() {
    if (!requestSession()->mayUse(BACKUP_FUNCTION)) {
        static_cast<void>(std::remove(pathOf(BACKUP_FILE).c_str()));
    }
    struct stat status = {};
    if (!requestSession()->mayUse(RESTORE_FUNCTION) &&
        (::lstat(pathOf(STAGING_FILE).c_str(), &status) == 0 || errno != ENOENT)) {
        removeStaged();
    }
}

void recordUpload() {
    AuditEvent event = makeAuditEvent("upload");
    event.file = auditedFileAt(pathOf(STAGING_FILE));
    // Without it, the page refused the upload but could not remove it.
    event.result = event.file ? "done" : "refused";
    record(event);
}

void recordWithResult(const char* name, const char* result) {
    AuditEvent event = makeAuditEvent(name);
    event.result = result;
    record(event);
}

void recordChanges() {
    if (!stagedBefore) {
        return;
    }
    bool mayBeNew = wasUploaded();
    try {
        const Staged after(statusOf(pathOf(STAGING_FILE)));
        const bool changed = !(after == *stagedBefore);
        mayBeNew = changed && after.isPresent();
        if (mayBeNew) {
            recordUpload();
        } else if (wasUploaded()) {
            recordWithResult("upload", "refused");
        } else if (changed) {
            recordWithResult("discard", "done");
        }
    } catch (...) {
        // An upload without a log line must not be kept.
        if (mayBeNew) {
            removeStaged();
        }
        throw;
    }
}

}  // namespace

void checkSessionFiles() {
    uploadsBefore = UploadFile::namedFiles();
    stagedBefore.reset();
    ownStatusOf(pathOf(BACKUP_FILE));
    stagedBefore.emplace(ownStatusOf(pathOf(STAGING_FILE)));
}

void settleSessionFiles() {
    const std::string& identifier = requestSession()->session.identifier;
    if (wasPageRefused()) {
        removeForbiddenFiles();
        return;
    }
    Session session;
    if (findSessionByIdentifier(identifier, session)) {
        recordChanges();
    } else {
        endSession(identifier);
    }
}

}  // namespace VeskLib::Host
