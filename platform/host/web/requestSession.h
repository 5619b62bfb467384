#pragma once

#include "platform/host/audit/AuditEvent.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/session/Session.h"

#include <string>

namespace VeskLib::Host {

// The cookie (see cookieName()) with Session::cookieValue().
inline constexpr const char* SESSION_COOKIE = "session";

// Who sent the request that this process serves, and what the board description lets them do.
struct RequestSession {
    Session session;
    UserRights rights;

    bool mayUse(int function) const;
};

// The value of the request's session cookie; empty without one. Other programs on the same host
// name may set cookies of the same name: of several, the one of a living session counts.
std::string requestCookie();

// Finds the session of a cookie value, and keeps it for requestSession(). Returns null when there
// is none, or its user is not in the board description any more, which ends it. Throws PException
// when it cannot be read now.
const RequestSession* findRequestSession(const std::string& cookieValue);

// The session that was found; null before, and if there was none.
const RequestSession* requestSession();

// Throws the login page if the session that was found has ended since: a body may take long.
void requireLivingSession();

// An event of this request: its address and identifier, and the session that was found.
AuditEvent makeAuditEvent(const std::string& name);

}  // namespace VeskLib::Host
