#pragma once

#include "platform/host/base/SessionShape.h"

#include <cstddef>
#include <ctime>
#include <string>

namespace VeskLib::Host {

inline constexpr std::time_t SESSION_IDLE_SECONDS = 30 * 60;
inline constexpr std::time_t SESSION_LIFE_SECONDS = 12 * 60 * 60;
inline constexpr std::size_t SESSIONS_OF_A_USER = 8;

// The functions that work with a session's files.
inline constexpr int BACKUP_FUNCTION = 105;
inline constexpr int RESTORE_FUNCTION = 106;

// A login session. It is one file of mode 0600 under SESSION_FOLDER, named after the identifier;
// its modification time is the session's last use. The file says who is logged in, not what they
// may do.
//
// The cookie value is the identifier (16 hexadecimal digits), a "-" and the secret token (32
// hexadecimal digits, 128 random bits). The file has only the token's SHA-256. The identifier
// alone, as seen in file names, is no login.
struct Session {
    std::string identifier;
    std::string token;  // empty for a session that was read by its identifier
    std::string user;
    std::time_t created = 0;
    // The last second of its life, unless it is used again; then no later than `created` +
    // SESSION_LIFE_SECONDS.
    std::time_t ends = 0;

    std::string cookieValue() const;
};

// Starts a session for `user`. If they have SESSIONS_OF_A_USER already, the oldest ends. Throws
// PException when the session cannot be written, or another login is in the way for too long.
Session startSession(const std::string& user);

// Finds the session of a cookie value and marks it as used. Returns false, with `session`
// unchanged, when the value is malformed, forged or expired; an expired session is ended. Throws
// PException when the session cannot be read now, which says nothing about whether it lives.
bool findSession(const std::string& cookieValue, Session& session);

// Finds a living session by its identifier, for the board's own programs: nothing is marked or
// ended. Returns false, with `session` unchanged, when there is none. Throws PException as above.
bool findSessionByIdentifier(const std::string& identifier, Session& session);

// Ends the session: removes it and its files under /var/tmp. Every other session's stay. Returns
// false when the session could not be removed and lives on; a file that stays goes with the next
// endExpiredSessions().
bool endSession(const std::string& identifier);

// Ends a session that its user did not end, and records why.
void endSessionBecause(const Session& session, const char* reason);

// Ends all sessions that have expired, and removes uploads whose request has died.
void endExpiredSessions();

}  // namespace VeskLib::Host
