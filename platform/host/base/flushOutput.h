#pragma once

namespace VeskLib::Host {

// Flushes std::cout. If that fails, as on a full disk or a closed pipe, prints the reason to
// std::cerr after the name of the program and returns false.
bool flushOutput(const char* program);

}  // namespace VeskLib::Host
