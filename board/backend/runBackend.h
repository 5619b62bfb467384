#pragma once

namespace VeskLib::Board {

// The whole life of the back-end daemon. Prints "ready" on standard output when it takes requests,
// and returns when SIGTERM or SIGINT arrives: 0. What keeps it from starting is one line on
// standard error: 1, or 2 for arguments that make no sense.
int runBackend(int argc, char** argv);

}  // namespace VeskLib::Board
