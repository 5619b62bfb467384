#pragma once

namespace VeskLib::Board {

// Runs the back-end daemon. Prints "ready" to standard output when it accepts requests, and returns
// 0 after SIGTERM or SIGINT. If it cannot start, prints one line to standard error and returns 1,
// or 2 for invalid arguments.
int runBackend(int argc, char** argv);

}  // namespace VeskLib::Board
