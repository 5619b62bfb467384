#pragma once

#include "client/report/Result.h"

#include <string>
#include <string_view>

namespace Efictl {

// Returns `text` in a form that is safe for a terminal: control characters, characters that change
// the direction of text, and bytes that are not UTF-8 are replaced by visible characters.
std::string forTerminal(std::string_view text);

// Prints a result to standard output, and warnings and the reason of a failure to standard error.
void printText(const Result& result, bool quiet);

// Prints a result as one JSON object in ASCII; docs/automation.md describes it.
void printJSON(const Result& result, const std::string& command, const std::string& board);

}  // namespace Efictl
