#pragma once

namespace VeskLib::Board {

// Stores the arguments of this process for restartBackend(). Must be called once, at the start.
void rememberArguments(char** arguments);

// Simulates a crash and a restart. At once, all memory is lost, all connections are closed and all
// locks are released. After the given time, the same process starts again with the state on the
// disk.
[[noreturn]] void restartBackend(int milliseconds);

// Must be called at the start of the process. After restartBackend(), waits for the given time.
void waitForReturn();

}  // namespace VeskLib::Board
