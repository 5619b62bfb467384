// efictl backs up, compares and restores the BIOS configurations of a board from scripts.

#include "client/command/commandLine.h"
#include "client/command/commands.h"
#include "client/interruption.h"
#include "client/report/printResult.h"
#include "platform/host/base/flushOutput.h"
#include "platform/host/base/standardDescriptors.h"

#include <malloc.h>

#include <csignal>
#include <iostream>
#include <map>

namespace {

using namespace Efictl;

using Command = void (*)(const Options&, Result&);
const std::map<std::string, Command> COMMANDS = {{"backup", backUpPartitions},
                                                 {"diff", diffPartitions},
                                                 {"list", listPartitions},
                                                 {"restore", restorePartitions},
                                                 {"verify", verifyFolder}};

Result carryOut(const Options& options) {
    Result result;
    try {
        COMMANDS.at(options.command)(options, result);
    } catch (const Failure& failure) {
        result.fail(failure);
    } catch (const std::exception& error) {
        result.fail(Failure(ExitCode::FAILED, error.what()));
    }
    return result;
}

// Returns the address to print; empty if there is none or it is malformed.
std::string shownAddress(const Options& options) {
    try {
        return options.board.empty() ? "" : boardAddress(options) + "/";
    } catch (const Failure&) {
        return "";
    }
}

int print(const Result& result, const Options& options) {
    if (options.asJSON) {
        printJSON(result, options.command, shownAddress(options));
    } else {
        printText(result, options.quiet);
    }
    const bool isPrinted = VeskLib::Host::flushOutput("efictl");
    const bool mayBeReplaced =
        result.exitCode == ExitCode::DONE || result.exitCode == ExitCode::DIFFERENT;
    return static_cast<int>(isPrinted || !mayBeReplaced ? result.exitCode : ExitCode::FAILED);
}

int run(int argumentCount, char** arguments) {
    const CommandLine line = readCommandLine(argumentCount, arguments);
    if (line.isHelp) {
        std::cout << line.text;
        return VeskLib::Host::flushOutput("efictl") ? 0 : static_cast<int>(ExitCode::FAILED);
    }
    Result result;
    if (line.isReady) {
        result = carryOut(line.options);
    } else {
        const char* const end = line.text.ends_with('.') ? "" : ".";
        result.fail(Failure(ExitCode::USAGE, line.text + end + " Try efictl --help."));
    }
    return print(result, line.options);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    VeskLib::Host::occupyStandardDescriptors();
    // Makes writing to a closed pipe an error, reported like a full disk.
    std::signal(SIGPIPE, SIG_IGN);
    // Returns large buffers to the system as soon as they are freed, which limits peak memory.
    const int largeBuffer = 64 * 1024;
    mallopt(M_MMAP_THRESHOLD, largeBuffer);
    catchInterruptions();
    return run(argumentCount, arguments);
}
