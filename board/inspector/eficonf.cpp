// Shows and compares EFI configuration files, with the same parser as the pages.

#include "board/inspector/FileReport.h"
#include "board/inspector/printReport.h"
#include "platform/host/base/flushOutput.h"
#include "platform/host/base/standardDescriptors.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>

namespace {

using namespace VeskLib::Board;
using nlohmann::ordered_json;

// The exit statuses. Scripts depend on them.
enum Status { SAME = 0, DIFFERENT = 1, NOT_USABLE = 2, USAGE = 3, NOT_PRINTED = 4 };

const char* const STATUSES =
    "Exit status: 0 usable, or the same content; 1 the files differ; 2 a file is not a usable\n"
    "configuration file; 3 wrong usage; 4 the answer could not be printed.";

struct Options {
    std::vector<std::string> shown;
    std::string first;
    std::string second;
    bool asJSON = false;
    bool ignoreTime = false;
};

int show(const Options& options) {
    int status = SAME;
    ordered_json list = ordered_json::array();
    for (const std::string& path : options.shown) {
        const FileReport report = inspect(path);
        if (options.asJSON) {
            list.push_back(toJSON(report));
        } else {
            std::cout << (&path == &options.shown.front() ? "" : "\n");
            printText(report);
        }
        if (!isUsable(report)) {
            status = NOT_USABLE;
        }
    }
    if (options.asJSON) {
        printJSON(list.size() == 1 ? list.front() : list);
    }
    return status;
}

int compareFiles(const Options& options) {
    const FileReport first = inspect(options.first);
    const FileReport second = inspect(options.second);
    const bool usable = isUsable(first) && isUsable(second);
    const SaveTime saveTime = options.ignoreTime ? SaveTime::IGNORED : SaveTime::COMPARED;
    const std::vector<Difference> differences =
        usable ? compare(first.file, second.file, saveTime) : std::vector<Difference>();
    if (options.asJSON) {
        ordered_json list = ordered_json::array();
        for (const Difference& difference : differences) {
            list.push_back({{"what", difference.what},
                            {"first", difference.first},
                            {"second", difference.second}});
        }
        printJSON({{"first", toJSON(first)}, {"second", toJSON(second)}, {"differences", list}});
    } else if (!usable) {
        printText(first);
        printText(second);
    } else if (differences.empty()) {
        std::cout << (first.file.saveTime == second.file.saveTime
                          ? "The files have the same content.\n"
                          : "The files have the same content, but different save times.\n");
    } else {
        printDifferences(differences);
    }
    if (!usable) {
        return NOT_USABLE;
    }
    return differences.empty() ? SAME : DIFFERENT;
}

// Returns the exit status, which is NOT_PRINTED if the output could not be written.
int endWith(int status) {
    return VeskLib::Host::flushOutput("eficonf") ? status : NOT_PRINTED;
}

CLI::App* addCommand(CLI::App& application, const char* name, const char* description,
                     Options& options) {
    CLI::App* const command = application.add_subcommand(name, description);
    command->add_flag("--json", options.asJSON, "Print JSON");
    command->footer(STATUSES);
    return command;
}

int run(int argumentCount, char** arguments) {
    CLI::App application("Shows and compares EFI configuration files (.dat).", "eficonf");
    application.require_subcommand(1);
    application.footer(std::string("Each command has its own --help.\n\n") + STATUSES);
    Options options;

    CLI::App* const showCommand = addCommand(
        application, "show",
        "Shows the contents of files and the settings in their payloads, or why one is not usable",
        options);
    showCommand->add_option("FILE", options.shown, "The files; several make a JSON array")
        ->required();
    CLI::App* const compareCommand =
        addCommand(application, "compare", "Shows the differences between two files", options);
    compareCommand->add_option("A", options.first, "The first file")->required();
    compareCommand->add_option("B", options.second, "The second file")->required();
    compareCommand->add_flag("--ignore-time", options.ignoreTime,
                             "Ignore the save times, as for two backups of an unchanged "
                             "partition");

    try {
        application.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return endWith(application.exit(error) == 0 ? SAME : USAGE);
    }
    return endWith(showCommand->parsed() ? show(options) : compareFiles(options));
}

}  // namespace

int main(int argumentCount, char** arguments) {
    VeskLib::Host::occupyStandardDescriptors();
    // Ignored, so that a closed pipe is reported like a full disk.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::cerr << "eficonf: " << error.what() << '\n';
        return USAGE;
    }
}
