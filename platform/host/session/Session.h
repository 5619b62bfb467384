#pragma once

#include "platform/host/base/SessionShape.h"

#include <cstddef>
#include <ctime>
#include <string>

namespace VeskLib::Host {

inline constexpr std::time_t SESSION_IDLE_SECONDS = 30 * 60;
inline constexpr std::time_t SESSION_LIFE_SECONDS = 12 * 60 * 60;
inline constexpr std::size_t SESSIONS_OF_A_USER = 8;

// The numbers of the functions that use a session's files.
inline constexpr int BACKUP_FUNCTION = 105;
inline constexpr int RESTORE_FUNCTION = 106;

// A login session, stored as a file of mode 0600 under SESSION_FOLDER. The file's name is the
// identifier and its modification time the last use. It contains the user's name, but not the
// user's rights.
//
// The cookie value is the identifier (16 hexadecimal digits), a "-" and the secret token (32
// hexadecimal digits, 128 random bits). The file contains only the token's SHA-256. The identifier
// alone, which is visible in file names, does not log anybody in.
struct Session {
    std::string identifier;
    std::string token;  // empty for a session that was found by its identifier
    std::string user;
    std::time_t created = 0;
    // The last second of its life if it is not used again. Each use extends it, up to `created` +
    // SESSION_LIFE_SECONDS.
    std::time_t ends = 0;

    std::string cookieValue() const;
};

// Starts a session for `user`. If the user has SESSIONS_OF_A_USER already, ends the oldest one.
// Throws PException if the session cannot be written or other logins hold the lock too long.
Session startSession(const std::string& user);

// Finds the session of a cookie value and marks it as used. Returns false and leaves `session`
// unchanged if the value is malformed, the token is wrong, or the session has ended or expired;
// ends a session that has expired. Throws PException if the session cannot be read now and may
// still be alive.
bool findSession(const std::string& cookieValue, Session& session);

// Finds a living session by its identifier, for the board's own programs. Neither marks it as used
// nor ends it. Returns false and leaves `session` unchanged if there is none. Throws PException
// like findSession().
bool findSessionByIdentifier(const std::string& identifier, Session& session);

// Ends the session: removes it and its files under /var/tmp, but no other session's. Returns false
// if the session could not be removed and is still alive. A file that could not be removed is left
// to the next endExpiredSessions().
bool endSession(const std::string& identifier);

// Ends a session without its user's request, and records the reason.
void endSessionBecause(const Session& session, const char* reason);

// Ends all expired sessions, and removes the uploads of requests that died.
void endExpiredSessions();

}  // namespace VeskLib::Host
