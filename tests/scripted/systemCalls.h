#pragma once

namespace VeskLib::Scripted {

// Whether creat(), close(), rename() and remove() are recorded and answered from the script, or
// go to the operating system as ever. They must do so outside a test, because the test framework
// and the coverage counters use files of their own.
void scriptSystemCalls(bool scripted);

}  // namespace VeskLib::Scripted
