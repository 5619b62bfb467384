#pragma once

#include "platform/host/web/requestChecks.h"

namespace VeskLib::Host {

// Records a request that is refused before it is processed.
void recordVerdict(RequestVerdict verdict);

// Records that the session's user was refused a function.
void recordRefusedRight();

// Called after a request has been processed and before its response is sent. Settles the session's
// files, and records what the request did to them and whether it was refused. Throws PException if
// a change cannot be recorded.
void settleRequest();

}  // namespace VeskLib::Host
