#pragma once

#include "platform/host/session/Session.h"

namespace VeskLib::Host {

// The components that the header of every page names (see sharedComponents.h):
//
//   board_name     the board's name; absent while it is not known
//   session_user   who is logged in; absent for everybody else, as all that follow
//   session_left   the seconds that are left of the session if it is not used again
//   session_life   the seconds that are left of it however often it is used
//   session_idle   the seconds that a use adds at most
//   session_minutes, session_end, session_end_utc
//                  the first in whole minutes; when the session ends, as an ISO 8601 date and
//                  as hour and minute in UTC: the board's own time would cost system calls

// Shares the board's name. Without effect if it cannot be read.
void shareBoardName();

// Shares whose session this is and how long it lives.
void shareSession(const Session& session);

// Removes what shareSession() has shared: nobody is logged in any more.
void unshareSession();

}  // namespace VeskLib::Host
