#pragma once

#include "platform/host/web/requestChecks.h"

namespace VeskLib::Host {

// Records a request that is refused before it is looked at.
void recordVerdict(RequestVerdict verdict);

// Records that the session's user was refused a function.
void recordRefusedRight();

// What the platform does after the work of a request, before its answer leaves: sees to the
// session's files, and records what the request did to them and whether it was refused. Throws
// PException when a change cannot be recorded.
void settleRequest();

}  // namespace VeskLib::Host
