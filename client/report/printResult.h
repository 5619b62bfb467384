#pragma once

#include "client/report/Result.h"

#include <string>
#include <string_view>

namespace Efictl {

// Returns `text` fit for a terminal: characters that control it, or turn the direction of the text
// around them, become visible ones, and so do bytes that are not UTF-8.
std::string forTerminal(std::string_view text);

// Prints a result to standard output, and in words what failed to standard error.
void printText(const Result& result, bool quiet);

// Prints a result as one object of ASCII characters; docs/automation.md describes it.
void printJSON(const Result& result, const std::string& command, const std::string& board);

}  // namespace Efictl
