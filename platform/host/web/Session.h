#pragma once

#include "platform/host/base/SessionShape.h"

#include <ctime>
#include <string>

namespace VeskLib::Host {

// The name of the cookie that holds Session::cookieValue().
inline constexpr const char* SESSION_COOKIE = "session";

inline constexpr std::time_t SESSION_IDLE_SECONDS = 30 * 60;
inline constexpr std::time_t SESSION_LIFE_SECONDS = 12 * 60 * 60;

// A login session. It is one file under SESSION_FOLDER, named after the identifier; its
// modification time is the session's last use.
//
// The cookie value is the identifier (16 hexadecimal digits), a "-" and the secret token (32
// hexadecimal digits, 128 random bits). The identifier alone, as seen in file names, is no login.
struct Session {
    std::string identifier;
    std::string token;
    std::string user;
    bool everyFunction = false;
    std::string functions;  // function numbers the user may use, each between commas: ",105,106,"
    std::time_t created = 0;

    std::string cookieValue() const;
};

// Starts a session for `user`. Throws PException when it cannot be written.
Session startSession(const std::string& user, bool everyFunction, const std::string& functions);

// Finds the session of a cookie value and marks it as used. False, with `session` unchanged, when
// the value is malformed, forged or expired; an expired session is ended. Throws PException when
// the session cannot be read now, which says nothing about whether it lives.
bool findSession(const std::string& cookieValue, Session& session);

// Ends the session: removes it and its files under /var/tmp. Every other session's stay. False when
// the session could not be removed and lives on; a file that stays goes with the next
// endExpiredSessions().
bool endSession(const std::string& identifier);

// Ends all sessions that have expired, and removes uploads whose request has died.
void endExpiredSessions();

}  // namespace VeskLib::Host
