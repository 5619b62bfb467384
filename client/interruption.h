#pragma once

namespace Efictl {

// Makes SIGINT, SIGTERM and SIGHUP interrupt the command instead of killing the process, so that
// the cleanup still runs.
void catchInterruptions();

// Returns the number of these signals received so far.
int interruptions();

// Throws Failure (FAILED) if one was received.
void endWhenInterrupted();

}  // namespace Efictl
