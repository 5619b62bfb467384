#pragma once

namespace VeskLib::Test {

// Makes a signal interrupt the system calls of this process every 10 ms from now on.
void interruptOften();

}  // namespace VeskLib::Test
