#include "platform/host/web/sessionFiles.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"
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
#include <string>
#include <vector>

namespace VeskLib::Host {

namespace {

// Which file is staged: another upload has another number or time.
struct Staged {
    bool present = false;
    ino_t number = 0;
    timespec changed = {};

    bool operator==(const Staged& other) const {
        return present == other.present && number == other.number &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

Staged stagedBefore;

std::string pathOf(const char* file) {
    return getCGIPath(file) + requestSession()->session.identifier;
}

// Returns false when there is nothing at `path`.
bool checkOwn(const std::string& path, struct stat& status) {
    if (::lstat(path.c_str(), &status) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || status.st_nlink != 1) {
        trace::VeskTrace(1, 1, 1).putLog(0, ("Not a file of the board's own: " + path).c_str());
        throw makePlatformException(SESSION_FILE_REFUSED, "A session's file is refused");
    }
    return true;
}

Staged findStaged() {
    struct stat status = {};
    if (::lstat(pathOf(STAGING_FILE).c_str(), &status) != 0) {
        return {};
    }
    return {.present = true, .number = status.st_ino, .changed = status.st_mtim};
}

void removeStaged() {
    const LockedFile lock(getCGIPath(STAGING_LOCK_FILE));
    static_cast<void>(std::remove(pathOf(STAGING_FILE).c_str()));
}

void removeWhatIsNotAllowed() {
    if (!requestSession()->mayUse(BACKUP_FUNCTION)) {
        static_cast<void>(std::remove(pathOf(BACKUP_FILE).c_str()));
    }
    if (!requestSession()->mayUse(RESTORE_FUNCTION) && findStaged().present) {
        removeStaged();
    }
}

void recordUpload() {
    AuditEvent event = makeAuditEvent("upload");
    std::vector<unsigned char> bytes;
    struct stat status = {};
    if (readOwnFile(pathOf(STAGING_FILE), LARGEST_CONFIGURATION_FILE, bytes, status)) {
        event.file = auditedFile(bytes);
    }
    event.result = "done";
    try {
        record(event);
    } catch (...) {
        removeStaged();
        throw;
    }
}

void recordWithResult(const char* name, const char* result) {
    AuditEvent event = makeAuditEvent(name);
    event.result = result;
    record(event);
}

void recordChanges() {
    const Staged after = findStaged();
    const bool changed = !(after == stagedBefore);
    if (changed && after.present) {
        recordUpload();
    } else if (UploadFile::wasNamed()) {
        recordWithResult("upload", "refused");
    } else if (changed) {
        recordWithResult("discard", "done");
    }
}

}  // namespace

void checkSessionFiles() {
    struct stat status = {};
    checkOwn(pathOf(BACKUP_FILE), status);
    stagedBefore = {};
    if (checkOwn(pathOf(STAGING_FILE), status)) {
        stagedBefore = {.present = true, .number = status.st_ino, .changed = status.st_mtim};
    }
}

void settleSessionFiles() {
    const std::string& identifier = requestSession()->session.identifier;
    if (wasPageRefused()) {
        removeWhatIsNotAllowed();
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
