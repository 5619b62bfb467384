#include "client/command/commandLine.h"

#include <CLI/CLI.hpp>

#include <cstring>
#include <sstream>

namespace Efictl {

namespace {

const char* const STATUSES =
    "Exit status: 0 done; 1 differences found, or nothing stored with --exit-code; 2 wrong usage;\n"
    "3 no board answers, or its response cannot be trusted or understood; 4 refused;\n"
    "5 the outcome of a restore is not known; 6 failure on this machine.";

const unsigned int LONGEST_TIMEOUT = 24 * 60 * 60;
const unsigned int LARGEST_PARTITION = 255;

// The commands and their options.
class Grammar {
public:
    explicit Grammar(Options& options) : options(options) {
        application.require_subcommand(1);
        application.set_version_flag("--version", "efictl " EFICTL_VERSION, "Print the version");
        application.footer(std::string("Each command has its own --help. A password is never read "
                                       "from the command line.\n\n") +
                           STATUSES);
        addList();
        addBackup();
        addRestore();
        addDiff();
        addVerify();
    }

    CLI::App application{
        "Backs up, compares and restores the BIOS configurations of a server "
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
                            "File with the password on its first line; without this option, the "
                            "password is read from EFICTL_PASSWORD, netrc or the terminal");
        command->add_option("--cacert", options.certificates,
                            "PEM file with the certificates to trust instead of the system's");
        command->add_flag("--insecure", options.insecure,
                          "Trust any certificate, and allow http:// to other machines");
        command
            ->add_option("--timeout", options.timeoutSeconds,
                         "Time limit of the whole command in seconds (60)")
            ->check(CLI::Range(1U, LONGEST_TIMEOUT));
        return command;
    }

    void addPartitions(CLI::App* command, const char* name, const char* description) {
        CLI::Option* const some = command->add_option(name, options.partitions, description)
                                      ->delimiter(',')
                                      ->allow_extra_args(false)
                                      ->check(CLI::Range(0U, LARGEST_PARTITION))
                                      ->type_name("N,...");
        command->add_flag("--all", options.allPartitions, "Every installed partition")
            ->excludes(some);
    }

    void addList() { addForBoard("list", "Shows the partitions: name, BIOS version, last backup"); }

    void addBackup() {
        CLI::App* const command = addForBoard("backup", "Saves configurations into a folder");
        addPartitions(command, "--partition", "Numbers of the partitions");
        command->add_option("--out", options.folder, "Folder for the backups, one for each board")
            ->required()
            ->type_name("DIR");
        command->add_flag("--if-changed", options.onlyIfChanged,
                          "Store nothing if a configuration is the same as in its newest backup");
        command
            ->add_option(
                "--keep", options.keep,
                "Remove the backups of a partition that are older than its newest N usable ones")
            ->check(CLI::Range(1U, 1000000U))
            ->type_name("N");
        command->add_flag("--exit-code", options.unchangedIsDifferent,
                          "Exit with status 1 if nothing was stored and nothing failed");
    }

    void addRestore() {
        CLI::App* const command =
            addForBoard("restore", "Restores a configuration file to partitions");
        command->add_option("FILE", options.files, "The configuration file")
            ->required()
            ->expected(1);
        addPartitions(command, "--to", "Numbers of the partitions");
        command->add_flag("--dry-run", options.dryRun,
                          "Upload and check the file and show the plan, but restore nothing");
        command->add_flag("--require-same-version", options.requireSameVersion,
                          "Refuse partitions with another BIOS version than the file");
        command->add_flag("--require-partition", options.requirePartition,
                          "Refuse any partition except the one that the file was saved from");
    }

    void addDiff() {
        CLI::App* const command = addForBoard(
            "diff", "Shows which settings differ between files, or between a board and files");
        command->add_option("FILE", options.files,
                            "The files; the first is compared with each of the others");
        command->add_flag("--against-board", options.againstBoard,
                          "Compare partitions with FILE, or with their newest backups in DIR");
        addPartitions(command, "--partition",
                      "Numbers of the partitions (that of FILE; with --out, all)");
        command->add_option("--out", options.folder, "Folder of the board's backups")
            ->type_name("DIR");
    }

    void addVerify() {
        CLI::App* const command = add("verify", "Checks every file in a folder of backups");
        command->add_option("DIR", options.folder, "Folder of a board's backups")->required();
        command
            ->add_option("--max-gap", options.longestGapHours,
                         "Report gaps of more than HOURS between the backups of a partition, or "
                         "since its newest one")
            ->check(CLI::Range(1U, 100000U))
            ->type_name("HOURS");
    }

    Options& options;
};

// Returns the error in a combination of options that the grammar cannot check; empty if none.
std::string findContradiction(const Options& options) {
    if (options.command == "backup" && !options.allPartitions && options.partitions.empty()) {
        return "Name the partitions with --partition N,... or --all.";
    }
    if (options.command == "restore" && !options.allPartitions && options.partitions.empty()) {
        return "Name the targets with --to N,... or --all.";
    }
    if (options.command != "diff") {
        return "";
    }
    if (!options.againstBoard) {
        return options.files.size() < 2 ? "Name at least two files, or use --against-board." : "";
    }
    const bool hasFolder = !options.folder.empty();
    if (options.files.size() > 1 || options.files.empty() != hasFolder) {
        return "With --against-board, name either one file or --out DIR.";
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
