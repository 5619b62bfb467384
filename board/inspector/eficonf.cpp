// Shows and compares EFI configuration files, as the pages see them.

#include "board/inspector/FileReport.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>

namespace {

using namespace VeskLib::Board;
using nlohmann::ordered_json;

// The exit statuses. Scripts depend on them.
enum Status { SAME = 0, DIFFERENT = 1, NOT_USABLE = 2, USAGE = 3, NOT_PRINTED = 4 };

bool isUsable(const FileReport& report) {
    return report.verdict == FileReport::Verdict::USABLE;
}

// Control characters of a file's texts would move the terminal's cursor. U+0080 to U+009F, which
// some terminals obey as well, are C2 80 to C2 9F.
std::string forTerminal(const std::string& text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const unsigned char next =
            i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : '\0';
        if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {
            shown += '?';
            ++i;
        } else {
            shown += byte < 0x20 || byte == 0x7F ? '?' : text[i];
        }
    }
    return shown;
}

ordered_json toJSON(const FileReport& report) {
    ordered_json json = {{"file", report.path}, {"verdict", nameOf(report.verdict)}};
    if (!report.reason.empty()) {
        json["reason"] = report.reason;
    }
    if (!report.sha256.empty()) {
        json["size"] = report.size;
        json["sha256"] = report.sha256;
    }
    if (isUsable(report)) {
        json["revision"] = report.file.revision;
        json["savedOn"] = formatTime(report.file.saveTime);
        json["partition"] = report.file.partition;
        json["partitionName"] = report.file.partitionName;
        json["biosVersion"] = report.file.version;
        json["payloadSize"] = report.file.payload.size();
        json["payloadSha256"] = report.payloadSha256;
    }
    return json;
}

void printLine(const char* name, const std::string& value) {
    std::cout << name << ": " << forTerminal(value) << '\n';
}

void printText(const FileReport& report) {
    printLine("File", report.path);
    printLine("Verdict", report.reason.empty()
                             ? nameOf(report.verdict)
                             : std::string(nameOf(report.verdict)) + " (" + report.reason + ")");
    if (!report.sha256.empty()) {
        printLine("Size", std::to_string(report.size) + " bytes");
        printLine("SHA-256", report.sha256);
    }
    if (isUsable(report)) {
        printLine("Revision", std::to_string(report.file.revision));
        printLine("Saved on", formatTime(report.file.saveTime));
        printLine("Partition", std::to_string(report.file.partition));
        printLine("Partition name", report.file.partitionName);
        printLine("BIOS version", report.file.version);
        printLine("Payload", std::to_string(report.file.payload.size()) + " bytes");
        printLine("Payload SHA-256", report.payloadSha256);
    }
}

// Texts that are not UTF-8 are shown with replacement characters.
void printJSON(const ordered_json& json) {
    std::cout << json.dump(4, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

int show(const std::string& path, bool asJSON) {
    const FileReport report = inspect(path);
    if (asJSON) {
        printJSON(toJSON(report));
    } else {
        printText(report);
    }
    return isUsable(report) ? SAME : NOT_USABLE;
}

int compareFiles(const std::string& firstPath, const std::string& secondPath, bool asJSON) {
    const FileReport first = inspect(firstPath);
    const FileReport second = inspect(secondPath);
    const bool usable = isUsable(first) && isUsable(second);
    const std::vector<Difference> differences =
        usable ? compare(first.file, second.file) : std::vector<Difference>();
    if (asJSON) {
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
    } else {
        for (const Difference& difference : differences) {
            std::cout << forTerminal(difference.what) << ": " << forTerminal(difference.first)
                      << " -> " << forTerminal(difference.second) << '\n';
        }
        std::cout << (differences.empty() ? "The files hold the same.\n" : "");
    }
    if (!usable) {
        return NOT_USABLE;
    }
    return differences.empty() ? SAME : DIFFERENT;
}

int run(int argumentCount, char** arguments) {
    CLI::App application("Shows and compares EFI configuration files (.dat).", "eficonf");
    application.require_subcommand(1);
    application.footer(
        "Exit status: 0 usable, or both hold the same; 1 the files differ; 2 a file is not a "
        "usable\n"
        "configuration file; 3 wrong usage; 4 the answer could not be printed.");
    bool asJSON = false;
    std::string first;
    std::string second;

    CLI::App* const showCommand = application.add_subcommand("show", "Shows what a file holds");
    showCommand->add_option("FILE", first, "the file")->required();
    showCommand->add_flag("--json", asJSON, "print JSON");
    CLI::App* const compareCommand =
        application.add_subcommand("compare", "Shows in what two files differ");
    compareCommand->add_option("A", first, "one file")->required();
    compareCommand->add_option("B", second, "the other file")->required();
    compareCommand->add_flag("--json", asJSON, "print JSON");

    try {
        application.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return application.exit(error) == 0 ? SAME : USAGE;
    }
    const int status =
        showCommand->parsed() ? show(first, asJSON) : compareFiles(first, second, asJSON);
    if (!std::cout.flush()) {
        std::cerr << "eficonf: the answer could not be printed\n";
        return NOT_PRINTED;
    }
    return status;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::cerr << "eficonf: " << error.what() << '\n';
        return USAGE;
    }
}
