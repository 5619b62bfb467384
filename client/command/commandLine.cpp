#include "client/command/commandLine.h"

#include <CLI/CLI.hpp>

#include <cstring>
#include <sstream>

namespace Efictl {

namespace {

const char* const STATUSES =
    "Exit status: 0 done; 1 something differs, or there was nothing to do where that was asked;\n"
    "2 wrong usage; 3 no board answers, or none that can be trusted or understood; 4 refused; 5 the\n"
    "outcome of a change is not known; 6 something failed on this machine.";

const unsigned int LONGEST_TIMEOUT = 24 * 60 * 60;
const unsigned int LARGEST_PARTITION = 255;

// The commands and their options.
class Grammar {
public:
    explicit Grammar(Options& options) : options(options) {
        application.require_subcommand(1);
        application.set_version_flag("--version", "efictl " EFICTL_VERSION, "Print the version");
        application.footer(std::string("Each command has a --help of its own. Passwords are never "
                                       "taken from the command line.\n\n") +
                           STATUSES);
        addList();
        addBackup();
    }

    CLI::App application{"Backs up, compares and restores the BIOS configurations of a server "
                         "management board.",
                         "efictl"};

private:
    CLI::App* add(const char* name, const char* description) {
        CLI::App* const command = application.add_subcommand(name, description);
        command->add_flag("--json", options.asJSON, "Print one JSON object, for programs");
        command->add_flag("--quiet", options.quiet, "Print failures only");
        command->footer(STATUSES);
        command->callback([this, name] { options.command = name; });
        return command;
    }

    CLI::App* addForBoard(const char* name, const char* description) {
        CLI::App* const command = add(name, description);
        command->add_option("--board", options.board, "Address of the board, https://name:port/")
            ->envname("EFICTL_BOARD");
        command->add_option("--user", options.user, "Name of the user")->envname("EFICTL_USER");
        command->add_option("--password-file", options.passwordFile,
                            "File with the password in its first line; without it the password "
                            "is taken from EFICTL_PASSWORD, netrc or the terminal");
        command->add_option("--cacert", options.certificates,
                            "PEM file with the certificates to trust instead of the system's");
        command->add_flag("--insecure", options.insecure,
                          "Trust any certificate, and allow http:// to other machines");
        command->add_option("--timeout", options.timeoutSeconds, "Seconds for all of it (60)")
            ->check(CLI::Range(1U, LONGEST_TIMEOUT));
        return command;
    }

    void addPartitions(CLI::App* command, const char* name, const char* description) {
        CLI::Option* const some = command->add_option(name, options.partitions, description)
                                      ->delimiter(',')
                                      ->check(CLI::Range(0U, LARGEST_PARTITION))
                                      ->type_name("N,...");
        command->add_flag("--all", options.allPartitions, "Every installed partition")
            ->excludes(some);
    }

    void addList() {
        addForBoard("list", "Shows the partitions: name, BIOS version, last backup");
    }

    void addBackup() {
        CLI::App* const command = addForBoard("backup", "Saves configurations into a folder");
        addPartitions(command, "--partition", "Numbers of partitions");
        command->add_option("--out", options.folder, "The folder, one for each board")
            ->required()
            ->type_name("DIR");
        command->add_flag("--if-changed", options.onlyIfChanged,
                          "Keep no copy of what is the same as the newest backup but for its time");
        command->add_option("--keep", options.keep,
                            "Remove what is older than the newest N usable backups of a partition")
            ->check(CLI::Range(1U, 1000000U))
            ->type_name("N");
        command->add_flag("--exit-code", options.unchangedIsDifferent,
                          "End with 1 if nothing was stored and nothing failed");
    }

    Options& options;
};

// What the grammar of single options cannot say. Empty if all is well.
std::string findContradiction(const Options& options) {
    if (options.command == "backup" && !options.allPartitions && options.partitions.empty()) {
        return "Say which partitions: --partition N,... or --all.";
    }
    return "";
}

}  // namespace

CommandLine readCommandLine(int argumentCount, const char* const* arguments) {
    CommandLine line;
    Grammar grammar(line.options);
    try {
        grammar.application.parse(argumentCount, arguments);
        line.text = findContradiction(line.options);
        line.isReady = line.text.empty();
    } catch (const CLI::ParseError& error) {
        std::ostringstream output;
        std::ostringstream errors;
        line.isHelp = grammar.application.exit(error, output, errors) == 0;
        line.text = line.isHelp ? output.str() : error.what();
        for (int i = 1; i < argumentCount; ++i) {
            line.options.asJSON = line.options.asJSON || std::strcmp(arguments[i], "--json") == 0;
        }
        for (const CLI::App* const command : grammar.application.get_subcommands()) {
            line.options.command = command->get_name();
        }
    }
    return line;
}

}  // namespace Efictl
