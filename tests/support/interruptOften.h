#pragma once

namespace VeskLib::Test {

// Has a signal interrupt the process's system calls every ten milliseconds from now on.
void interruptOften();

}  // namespace VeskLib::Test
