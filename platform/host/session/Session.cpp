#include "platform/host/session/Session.h"

#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/equalSteadily.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/randomText.h"
#include "platform/host/base/sha256.h"
#include "platform/host/session/abandonedUploads.h"
#include "platform/host/storage/files.h"

#include <VeskLib/LockedFile.h>
#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace VeskLib::Host {

namespace {

const std::size_t LARGEST_SESSION_FILE = 16 * 1024;
const int SESSION_FILE_MODE = 0600;
const mode_t PERMISSIONS = 07777;
// The last use is stored with this precision, so that not every request writes to the disk.
const std::time_t USE_PRECISION_SECONDS = 60;
// A session's times may be this far in the future: setting the clock back a little must not log
// everybody out.
const std::time_t CLOCK_TOLERANCE_SECONDS = 60;
const std::size_t IDENTIFIER_BYTES = 8;
const std::size_t TOKEN_BYTES = 16;

std::string sessionPath(const std::string& identifier) {
    return getCGIPath(SESSION_FOLDER) + "/" + identifier;
}

// Returns the value of the first line "name=value"; empty if there is none.
std::string valueOf(std::string_view name, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.size() > name.size() && line[name.size()] == '=' && line.starts_with(name)) {
            return std::string(line.substr(name.size() + 1));
        }
    }
    return {};
}

std::vector<unsigned char> toLines(const Session& session) {
    const std::string text = "token_sha256=" + sha256Hex(session.token) + "\nuser=" + session.user +
                             "\ncreated=" + std::to_string(session.created) + "\n";
    return {text.begin(), text.end()};
}

// A session as stored in its file.
struct StoredSession {
    std::string tokenSum;
    std::string user;
    std::time_t created = 0;
    std::time_t lastUse = 0;
    long lastUseNanoseconds = 0;
};

// Preserves errno.
void traceForeignFile(const std::string& identifier) {
    const int reason = errno;
    trace::VeskTrace(1, 1, 1).putLog(
        0, ("Not a session of the board's own: " + sessionPath(identifier)).c_str());
    errno = reason;
}

// Returns false and sets errno if the file cannot be read or is not a session's.
bool readSession(const std::string& identifier, StoredSession& session) {
    std::vector<unsigned char> bytes;
    struct stat status = {};
    if (!readOwnFile(sessionPath(identifier), LARGEST_SESSION_FILE, bytes, status)) {
        if (errno == EPERM) {
            traceForeignFile(identifier);
        }
        return false;
    }
    if ((status.st_mode & PERMISSIONS) != SESSION_FILE_MODE) {
        errno = EPERM;
        traceForeignFile(identifier);
        return false;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string created = valueOf("created", text);
    std::time_t createdTime = 0;
    std::from_chars(created.data(), created.data() + created.size(), createdTime);
    session = {.tokenSum = valueOf("token_sha256", text),
               .user = valueOf("user", text),
               .created = std::max<std::time_t>(createdTime, 0),
               .lastUse = status.st_mtim.tv_sec,
               .lastUseNanoseconds = status.st_mtim.tv_nsec};
    return true;
}

bool isLiving(const StoredSession& session, std::time_t now) {
    const std::time_t latest = now + CLOCK_TOLERANCE_SECONDS;
    return now - session.lastUse <= SESSION_IDLE_SECONDS &&
           now - session.created <= SESSION_LIFE_SECONDS && session.lastUse <= latest &&
           session.created <= latest;
}

std::time_t endOf(const StoredSession& session) {
    return std::min(session.lastUse + SESSION_IDLE_SECONDS, session.created + SESSION_LIFE_SECONDS);
}

enum class SessionState {
    LIVING,
    GONE,        // absent, expired, or not a session
    UNREADABLE,  // unknown for now; must not be removed
};

// Returns the state for a session file that could not be read, from errno. Only these errors are
// permanent.
SessionState stateAfterFailure() {
    const bool lasting =
        errno == ENOENT || errno == ELOOP || errno == EINVAL || errno == EFBIG || errno == EPERM;
    return lasting ? SessionState::GONE : SessionState::UNREADABLE;
}

SessionState readState(const std::string& identifier, StoredSession& session) {
    if (!readSession(identifier, session)) {
        return stateAfterFailure();
    }
    return isLiving(session, std::time(nullptr)) ? SessionState::LIVING : SessionState::GONE;
}

[[noreturn]] void failToRead() {
    throw makePlatformException(SESSION_NOT_READABLE, "The session cannot be read");
}

// Records the end of a session that its user did not ask for. The session ends even if this fails.
void recordEnd(const char* name, const std::string& identifier, const std::string& user,
               const char* reason) {
    if (user.empty()) {
        return;  // the file could not be read, or was not a session's
    }
    AuditEvent event;
    event.event = name;
    event.user = user;
    event.session = identifier;
    event.reason = reason;
    try {
        record(event);
    } catch (const PException&) {
        trace::VeskTrace(1, 1, 1).putLog(0,
                                         "The end of a session cannot be written to the audit log");
    }
}

void removeStagedFile(const std::string& identifier) {
    const std::string path = getCGIPath(STAGING_FILE) + identifier;
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        return;
    }
    try {
        const LockedFile lock(getCGIPath(STAGING_LOCK_FILE));
        static_cast<void>(std::remove(path.c_str()));
    } catch (const PException&) {
        // The lock is not free in time; the next endExpiredSessions() removes the file.
    }
}

// Returns the session identifier at the end of a file name under /var/tmp; empty for other files.
std::string identifierOfFile(const std::string& name) {
    for (const std::string_view path : {BACKUP_FILE, STAGING_FILE}) {
        const std::string_view prefix = path.substr(path.rfind('/') + 1);
        if (name.starts_with(prefix) && isSessionIdentifier(name.substr(prefix.size()))) {
            return name.substr(prefix.size());
        }
    }
    return {};
}

enum class Removal { REMOVED, ABSENT, FAILED };

Removal removeSession(const std::string& identifier) {
    const bool removed = std::remove(sessionPath(identifier).c_str()) == 0;
    const bool absent = !removed && errno == ENOENT;
    static_cast<void>(std::remove((getCGIPath(BACKUP_FILE) + identifier).c_str()));
    removeStagedFile(identifier);
    return removed ? Removal::REMOVED : absent ? Removal::ABSENT : Removal::FAILED;
}

void endGoneSession(const std::string& identifier, const StoredSession& session) {
    if (removeSession(identifier) == Removal::REMOVED) {
        recordEnd("session_expired", identifier, session.user, "");
    }
}

void endIfGone(const std::string& identifier) {
    StoredSession session;
    if (isSessionIdentifier(identifier) && readState(identifier, session) == SessionState::GONE) {
        endGoneSession(identifier, session);
    }
}

// Ends the oldest sessions of `user` until there is room for one more. Of those created in the same
// second, the least recently used ends first.
void makeRoomFor(const std::string& user) {
    using Age = std::tuple<std::time_t, std::time_t, long>;
    std::vector<std::pair<Age, std::string>> sessions;
    for (const std::string& name : listNames(getCGIPath(SESSION_FOLDER))) {
        StoredSession session;
        if (isSessionIdentifier(name) && readState(name, session) == SessionState::LIVING &&
            session.user == user) {
            sessions.push_back(
                {{session.created, session.lastUse, session.lastUseNanoseconds}, name});
        }
    }
    std::sort(sessions.begin(), sessions.end());
    for (std::size_t i = 0; i + SESSIONS_OF_A_USER <= sessions.size(); ++i) {
        endSessionBecause({.identifier = sessions[i].second, .token = {}, .user = user}, "limit");
    }
}

}  // namespace

std::string Session::cookieValue() const {
    return identifier + "-" + token;
}

Session startSession(const std::string& user) {
    Session session = {.identifier = makeRandomText(IDENTIFIER_BYTES),
                       .token = makeRandomText(TOKEN_BYTES),
                       .user = user,
                       .created = std::time(nullptr)};
    session.ends = session.created + SESSION_IDLE_SECONDS;
    // Serializes logins: two at once would not count each other.
    const LockedFile lock(getCGIPath(LOGIN_LOCK));
    makeRoomFor(user);
    const bool oneLine = user.find('\n') == std::string::npos;
    if (!oneLine ||
        !createFile(sessionPath(session.identifier), toLines(session), SESSION_FILE_MODE)) {
        throw makePlatformException(SESSION_NOT_STORED, "The session cannot be stored");
    }
    return session;
}

bool findSession(const std::string& cookieValue, Session& session) {
    const std::string identifier = identifierOf(cookieValue);
    StoredSession found;
    if (identifier.empty()) {
        return false;
    }
    switch (readState(identifier, found)) {
        case SessionState::LIVING:
            break;
        case SessionState::GONE:
            // Files of a session that is gone are not worth keeping.
            endGoneSession(identifier, found);
            return false;
        case SessionState::UNREADABLE:
            failToRead();
    }
    std::string token = cookieValue.substr(identifier.size() + 1);
    if (!equalSteadily(found.tokenSum, sha256Hex(token))) {
        return false;
    }
    const std::time_t now = std::time(nullptr);
    if (now - found.lastUse >= USE_PRECISION_SECONDS &&
        utimensat(AT_FDCWD, sessionPath(identifier).c_str(), nullptr, AT_SYMLINK_NOFOLLOW) == 0) {
        found.lastUse = now;
    }
    session = {.identifier = identifier,
               .token = std::move(token),
               .user = std::move(found.user),
               .created = found.created,
               .ends = endOf(found)};
    return true;
}

bool findSessionByIdentifier(const std::string& identifier, Session& session) {
    StoredSession found;
    if (!isSessionIdentifier(identifier)) {
        return false;
    }
    const SessionState state = readState(identifier, found);
    if (state == SessionState::UNREADABLE) {
        failToRead();
    }
    if (state == SessionState::GONE) {
        return false;
    }
    session = {.identifier = identifier,
               .token = {},
               .user = std::move(found.user),
               .created = found.created,
               .ends = endOf(found)};
    return true;
}

bool endSession(const std::string& identifier) {
    return !isSessionIdentifier(identifier) || removeSession(identifier) != Removal::FAILED;
}

void endSessionBecause(const Session& session, const char* reason) {
    if (removeSession(session.identifier) == Removal::REMOVED) {
        recordEnd("session_ended", session.identifier, session.user, reason);
    }
}

void endExpiredSessions() {
    for (const std::string& name : listNames(getCGIPath(SESSION_FOLDER))) {
        endIfGone(name);
    }
    for (const std::string& name : listNames(getCGIPath("/var/tmp"))) {
        endIfGone(identifierOfFile(name));
    }
    removeAbandonedUploads();
}

}  // namespace VeskLib::Host
