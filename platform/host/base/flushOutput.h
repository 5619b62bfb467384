#pragma once

namespace VeskLib::Host {

// Flushes std::cout. If that fails, for example because the disk is full or the pipe is closed,
// prints the name of the program and the reason to std::cerr and returns false.
bool flushOutput(const char* program);

}  // namespace VeskLib::Host
