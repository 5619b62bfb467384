#pragma once

namespace Efictl {

// SIGINT, SIGTERM and SIGHUP do not end the process: what is going on ends early, and what has to
// happen at the end still does.
void catchInterruptions();

// Returns how many of these signals have come.
int interruptions();

// Throws Failure (FAILED) if one has come.
void endWhenInterrupted();

}  // namespace Efictl
