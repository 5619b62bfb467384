#pragma once

namespace VeskLib::Scripted {

// If `scripted`, records creat(), close(), rename() and remove() and answers them from the script.
// Otherwise passes them to the operating system, which is required outside a test, because the test
// framework and the coverage counters use files of their own.
void scriptSystemCalls(bool scripted);

}  // namespace VeskLib::Scripted
