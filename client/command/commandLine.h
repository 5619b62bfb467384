#pragma once

#include "client/command/Options.h"

#include <string>

namespace Efictl {

// A parsed command line: a command to run, or a text to print.
struct CommandLine {
    Options options;
    bool isReady = false;  // true if there is a command to run
    std::string text;      // if not ready: the help or the error
    bool isHelp = false;
};

// Parses the arguments of main(), with defaults from the environment.
CommandLine readCommandLine(int argumentCount, const char* const* arguments);

}  // namespace Efictl
