#pragma once

#include "client/report/Result.h"

#include <string>
#include <string_view>

namespace Efictl {

// Returns `text` made safe for a terminal: replaces control characters, characters that change the
// text direction, and bytes that are not UTF-8 by visible characters, and cuts long text.
std::string forTerminal(std::string_view text);

// Prints the lines to standard output unless `quiet`, warnings and reason to standard error.
void printText(const Result& result, bool quiet);

// Prints a result as one JSON object in ASCII; docs/automation.md describes it.
void printJSON(const Result& result, const std::string& command, const std::string& board);

}  // namespace Efictl
