#pragma once

#include "client/command/Options.h"

#include <string>

namespace Efictl {

// What is to be done with a command line.
struct CommandLine {
    Options options;
    bool isReady = false;  // a command is to be carried out
    std::string text;      // else what to print instead: the help, or what is wrong
    bool isHelp = false;
};

// Reads the arguments of main(), and the variables of the environment that may replace them.
CommandLine readCommandLine(int argumentCount, const char* const* arguments);

}  // namespace Efictl
