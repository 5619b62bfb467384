#pragma once

namespace VeskLib::Board {

// Remembers how this process was started. Called once, at the start.
void rememberArguments(char** arguments);

// Dies as in a crash and comes back: from one moment to the next everything in memory is gone, all
// connections are cut and all locks are released; after the given time the same process starts
// anew from what is on the disk.
[[noreturn]] void restartBackend(int milliseconds);

// At the start of a process that is coming back: waits until its time has come.
void waitForReturn();

}  // namespace VeskLib::Board
