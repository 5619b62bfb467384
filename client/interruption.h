#pragma once

namespace Efictl {

// Makes SIGINT, SIGTERM and SIGHUP end the command instead of the process, so that the cleanup
// still runs.
void catchInterruptions();

// Returns the number of these signals that were received.
int interruptions();

// Throws Failure (FAILED) if one was received.
void endWhenInterrupted();

}  // namespace Efictl
