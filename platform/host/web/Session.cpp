#include "platform/host/web/Session.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/randomText.h"
#include "platform/host/storage/files.h"
#include "platform/host/web/abandonedUploads.h"

#include <VeskLib/LockedFile.h>
#include <VeskLib/getCGIPath.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <map>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

namespace {

const std::size_t LARGEST_SESSION_FILE = 16 * 1024;
const int SESSION_FILE_MODE = 0600;
// The last use is kept to this precision, so that not every request writes.
const std::time_t USE_PRECISION_SECONDS = 60;
const std::size_t IDENTIFIER_BYTES = 8;
const std::size_t TOKEN_BYTES = 16;

std::string sessionPath(const std::string& identifier) {
    return getCGIPath(SESSION_FOLDER) + "/" + identifier;
}

// Takes as long for every token, so that time tells nothing of how many characters are right.
bool sameToken(const std::string& one, const std::string& other) {
    unsigned int difference = one.size() == other.size() ? 0 : 1;
    for (std::size_t i = 0; i < one.size() && i < other.size(); ++i) {
        difference |= static_cast<unsigned char>(one[i] ^ other[i]);
    }
    return difference == 0;
}

std::map<std::string, std::string> parseLines(const std::vector<unsigned char>& bytes) {
    std::map<std::string, std::string> values;
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos) {
            values.emplace(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return values;
}

std::vector<unsigned char> toLines(const Session& session) {
    const std::string text = "token=" + session.token + "\nuser=" + session.user +
                             "\nevery_function=" + (session.everyFunction ? "1" : "0") +
                             "\nfunctions=" + session.functions +
                             "\ncreated=" + std::to_string(session.created) + "\n";
    return {text.begin(), text.end()};
}

bool readSession(const std::string& identifier, Session& session, std::time_t& lastUse) {
    std::vector<unsigned char> bytes;
    if (!readFile(sessionPath(identifier), LARGEST_SESSION_FILE, bytes, lastUse)) {
        return false;
    }
    std::map<std::string, std::string> values = parseLines(bytes);
    const std::string& created = values["created"];
    std::time_t createdTime = 0;
    std::from_chars(created.data(), created.data() + created.size(), createdTime);
    session = {.identifier = identifier,
               .token = values["token"],
               .user = values["user"],
               .everyFunction = values["every_function"] == "1",
               .functions = values["functions"],
               .created = std::max<std::time_t>(createdTime, 0)};
    return true;
}

bool isExpired(const Session& session, std::time_t lastUse, std::time_t now) {
    return now - lastUse > SESSION_IDLE_SECONDS || now - session.created > SESSION_LIFE_SECONDS;
}

enum class SessionState {
    LIVING,
    GONE,        // absent, expired, or no session at all
    UNREADABLE,  // whether it lives cannot be told now; it must be left alone
};

// What `errno` says of a session's file that cannot be read: only these reasons last.
SessionState stateAfterFailure() {
    const bool lasting = errno == ENOENT || errno == ELOOP || errno == EINVAL || errno == EFBIG;
    return lasting ? SessionState::GONE : SessionState::UNREADABLE;
}

// Reads a session; when it lives, with the time of its last use.
SessionState readState(const std::string& identifier, Session& session, std::time_t& lastUse) {
    if (!readSession(identifier, session, lastUse)) {
        return stateAfterFailure();
    }
    return isExpired(session, lastUse, std::time(nullptr)) ? SessionState::GONE
                                                           : SessionState::LIVING;
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
        // Another request holds the lock for long; the next endExpiredSessions() finds the file.
    }
}

// The identifier that ends the name of a session's file under /var/tmp; empty for other files.
std::string identifierOfFile(const std::string& name) {
    for (const std::string_view path : {BACKUP_FILE, STAGING_FILE}) {
        const std::string_view prefix = path.substr(path.rfind('/') + 1);
        if (name.starts_with(prefix) && isSessionIdentifier(name.substr(prefix.size()))) {
            return name.substr(prefix.size());
        }
    }
    return {};
}

void endIfGone(const std::string& identifier) {
    Session session;
    std::time_t lastUse = 0;
    if (isSessionIdentifier(identifier) &&
        readState(identifier, session, lastUse) == SessionState::GONE) {
        endSession(identifier);
    }
}

}  // namespace

std::string Session::cookieValue() const {
    return identifier + "-" + token;
}

Session startSession(const std::string& user, bool everyFunction, const std::string& functions) {
    Session session = {.identifier = makeRandomText(IDENTIFIER_BYTES),
                       .token = makeRandomText(TOKEN_BYTES),
                       .user = user,
                       .everyFunction = everyFunction,
                       .functions = functions,
                       .created = std::time(nullptr)};
    const bool oneLineEach = (user + functions).find('\n') == std::string::npos;
    if (!oneLineEach ||
        !createFile(sessionPath(session.identifier), toLines(session), SESSION_FILE_MODE)) {
        throw makePlatformException(SESSION_NOT_STORED, "The session cannot be stored");
    }
    return session;
}

bool findSession(const std::string& cookieValue, Session& session) {
    const std::string identifier = identifierOf(cookieValue);
    Session found;
    std::time_t lastUse = 0;
    if (identifier.empty()) {
        return false;
    }
    switch (readState(identifier, found, lastUse)) {
        case SessionState::LIVING:
            break;
        case SessionState::GONE:
            // An identifier without a living session holds nothing worth keeping.
            endSession(identifier);
            return false;
        case SessionState::UNREADABLE:
            throw makePlatformException(SESSION_NOT_READABLE, "The session cannot be read");
    }
    if (!sameToken(found.cookieValue(), cookieValue)) {
        return false;
    }
    if (std::time(nullptr) - lastUse >= USE_PRECISION_SECONDS) {
        utimensat(AT_FDCWD, sessionPath(identifier).c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
    }
    session = found;
    return true;
}

bool endSession(const std::string& identifier) {
    if (!isSessionIdentifier(identifier)) {
        return true;
    }
    const bool gone = std::remove(sessionPath(identifier).c_str()) == 0 || errno == ENOENT;
    static_cast<void>(std::remove((getCGIPath(BACKUP_FILE) + identifier).c_str()));
    removeStagedFile(identifier);
    return gone;
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
