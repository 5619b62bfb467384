#pragma once

#include <exception>
#include <string>

namespace VeskLib::Board {

// Writes one line to standard error, in one piece, with the program's name in front. Control
// characters become "?". Callers keep passwords and user names out of it.
void logLine(const std::string& text);

// The same for `what` and the reason. Never throws: without memory it says only that.
void logFailure(const char* what, const char* reason) noexcept;
void logFailure(const char* what, const std::exception& failure) noexcept;

// `number` as the documents write request numbers: "0x020100A4".
std::string hexadecimal(unsigned int number);

}  // namespace VeskLib::Board
