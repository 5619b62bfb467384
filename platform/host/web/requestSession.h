#pragma once

#include "platform/host/audit/AuditEvent.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/session/Session.h"

#include <string>

namespace VeskLib::Host {

// The name of the cookie (see cookieName()) that contains Session::cookieValue().
inline constexpr const char* SESSION_COOKIE = "session";

// The session of the request that this process serves, and the rights that the board description
// gives its user.
struct RequestSession {
    Session session;
    UserRights rights;

    bool mayUse(int function) const;
};

// Returns the value of the request's session cookie; empty if there is none. Other programs under
// the same host name may set a cookie of that name: of several, the one of a living session counts.
std::string requestCookie();

// Finds the session of a cookie value, and keeps it for requestSession(). Returns null if there is
// none. If the session's user is no longer in the board description, ends the session and returns
// null. Throws PException if the session cannot be read now.
const RequestSession* findRequestSession(const std::string& cookieValue);

// Returns the session that was found; null before, and if there was none.
const RequestSession* requestSession();

// Throws the login page if the session that was found has ended since. Must be called after
// receiving a body, because that may take long.
void requireLivingSession();

// Returns an event with this request's address and identifier and the session that was found.
AuditEvent makeAuditEvent(const std::string& name);

}  // namespace VeskLib::Host
