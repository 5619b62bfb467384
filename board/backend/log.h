#pragma once

#include <exception>
#include <string>

namespace VeskLib::Board {

// Writes one line to standard error in one piece, after the program's name. Control characters
// become "?". Must not be called with passwords or user names.
void logLine(const std::string& text);

// Logs `what` and the reason. If memory is exhausted, logs only that.
void logFailure(const char* what, const char* reason) noexcept;
void logFailure(const char* what, const std::exception& failure) noexcept;

// Returns a request number as in the documents, such as "0x020100A4".
std::string hexadecimal(unsigned int number);

}  // namespace VeskLib::Board
