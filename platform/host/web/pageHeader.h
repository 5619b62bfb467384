#pragma once

#include "platform/host/session/Session.h"

namespace VeskLib::Host {

// The components of every page's header (see sharedComponents.h):
//
//   board_name     the board's name; absent if it is not known
//   session_user   the user's name; absent, like all that follow, if nobody is logged in
//   session_left   seconds until the session ends if it is not used again
//   session_life   seconds until it ends even if it is used
//   session_idle   the most seconds by which a use extends it
//   session_minutes, session_end, session_end_utc
//                  session_left in whole minutes; the end of the session as an ISO 8601 date, and
//                  as hour and minute in UTC, because the local time would cost system calls

// Shares the board's name. Does nothing if it cannot be read.
void shareBoardName();

// Shares the session's user and remaining time.
void shareSession(const Session& session);

// Removes what shareSession() has shared.
void unshareSession();

}  // namespace VeskLib::Host
