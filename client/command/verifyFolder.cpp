#include "board/inspector/FileReport.h"
#include "client/command/commands.h"
#include "client/folder/BackupFolder.h"
#include "platform/host/storage/files.h"

#include <algorithm>
#include <map>

namespace Efictl {

namespace {

using nlohmann::ordered_json;
using VeskLib::Board::FileReport;

const std::time_t HOUR = 60 * 60;

std::string formatTime(std::time_t time) {
    return VeskLib::Board::formatTime(static_cast<std::uint32_t>(time));
}

// A file in the folder and the result of its check.
struct CheckedFile {
    std::string name;
    std::optional<BackupName> backup;  // empty if the name is not one that efictl makes
    FileReport report;
    std::string problem;
    bool isNewest = false;

    bool isUsable() const { return problem.empty(); }
};

CheckedFile checkFile(const BackupFolder& folder, const std::string& name) {
    CheckedFile file;
    file.name = name;
    file.backup = BackupName::parse(name);
    file.report = VeskLib::Board::inspect(folder.pathOf(name));
    // Frees the settings, which are not needed, because there may be thousands of files.
    file.report.file.payload = {};
    if (file.report.verdict != FileReport::Verdict::USABLE) {
        file.problem = std::string(nameOf(file.report.verdict)) + ": " + file.report.reason;
    } else if (file.backup && file.backup->partition != file.report.file.partition) {
        file.problem =
            "a file of partition " + std::to_string(file.report.file.partition) + " instead";
    }
    return file;
}

ordered_json toJSON(const CheckedFile& file) {
    ordered_json json = {
        {"name", file.name},       {"usable", file.isUsable()}, {"problem", nullptr},
        {"partition", nullptr},    {"made_on", nullptr},        {"saved_on", nullptr},
        {"bios_version", nullptr}, {"sha256", nullptr},         {"newest", file.isNewest}};
    if (file.backup) {
        json["partition"] = file.backup->partition;
        json["made_on"] = formatTime(file.backup->time);
    }
    if (!file.isUsable()) {
        json["problem"] = file.problem;
    } else {
        json["saved_on"] = VeskLib::Board::formatTime(file.report.file.saveTime);
        json["bios_version"] = versionToJSON(file.report.file.version);
        json["sha256"] = file.report.sha256;
    }
    return json;
}

// The backups of one partition: the usable ones, oldest first, and the number of unusable ones.
struct History {
    std::vector<CheckedFile*> usable;
    std::size_t unusable = 0;
};
using Histories = std::map<unsigned int, History>;

Histories sortOut(std::vector<CheckedFile>& files) {
    Histories histories;
    for (CheckedFile& file : files) {
        if (!file.backup) {
            continue;
        }
        History& history = histories[file.backup->partition];
        if (file.isUsable()) {
            history.usable.push_back(&file);
        } else {
            ++history.unusable;
        }
    }
    for (auto& [partition, history] : histories) {
        std::sort(history.usable.begin(), history.usable.end(),
                  [](const CheckedFile* one, const CheckedFile* other) {
                      return one->backup->time < other->backup->time;
                  });
        if (!history.usable.empty()) {
            history.usable.back()->isNewest = true;
        }
    }
    return histories;
}

void addGap(unsigned int partition, std::time_t from, std::time_t to, bool isOpen,
            const Options& options, Result& result) {
    const std::time_t hours = (to - from) / HOUR;
    if (to - from <= static_cast<std::time_t>(*options.longestGapHours) * HOUR) {
        return;
    }
    result.details["gaps"].push_back(
        {{"partition", partition},
         {"from", formatTime(from)},
         {"to", isOpen ? ordered_json() : ordered_json(formatTime(to))},
         {"hours", hours}});
    result.lines.push_back(describePartition(partition) + ": no backup for " +
                           std::to_string(hours) + " hours after " + formatTime(from));
    result.fail(Failure(ExitCode::DIFFERENT, "There are gaps between the backups."));
}

void findGaps(unsigned int partition, const History& history, const Options& options,
              Result& result) {
    const std::time_t none = 0;
    std::time_t former = none;
    for (const CheckedFile* const file : history.usable) {
        if (former != none) {
            addGap(partition, former, file->backup->time, false, options, result);
        }
        former = file->backup->time;
    }
    if (former != none) {
        addGap(partition, former, std::time(nullptr), true, options, result);
    }
}

void addPartition(unsigned int partition, const History& history, Result& result) {
    ordered_json json = {{"number", partition},
                         {"name", nullptr},
                         {"bios_version", nullptr},
                         {"newest", nullptr},
                         {"usable", history.usable.size()},
                         {"unusable", history.unusable}};
    std::string text =
        describePartition(partition) + ": " + std::to_string(history.usable.size()) + " usable";
    text += history.unusable == 0 ? "" : ", " + std::to_string(history.unusable) + " not usable";
    if (!history.usable.empty()) {
        const CheckedFile& newest = *history.usable.back();
        json["name"] = newest.report.file.partitionName;
        json["bios_version"] = versionToJSON(newest.report.file.version);
        json["newest"] = newest.name;
        text += ", newest " + newest.name;
    }
    result.partitions.push_back(json);
    result.lines.push_back(text);
}

}  // namespace

void verifyFolder(const Options& options, Result& result) {
    result.details = {{"folder", options.folder},
                      {"files", ordered_json::array()},
                      {"gaps", ordered_json::array()}};
    const BackupFolder folder(options.folder, BackupFolder::Use::READ);
    std::vector<std::string> names = VeskLib::Host::listNames(options.folder);
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".dat"); });
    std::sort(names.begin(), names.end());
    std::vector<CheckedFile> files;
    files.reserve(names.size());
    for (const std::string& name : names) {
        files.push_back(checkFile(folder, name));
    }
    const Histories histories = sortOut(files);
    for (const CheckedFile& file : files) {
        result.details["files"].push_back(toJSON(file));
        if (!file.isUsable()) {
            result.lines.push_back(file.name + ": " + file.problem);
            result.fail(Failure(ExitCode::DIFFERENT, "A file is not usable: " + file.name + "."));
        }
    }
    for (const auto& [partition, history] : histories) {
        addPartition(partition, history, result);
        if (options.longestGapHours) {
            findGaps(partition, history, options, result);
        }
        if (history.usable.empty()) {
            result.fail(Failure(ExitCode::DIFFERENT, "There is no usable backup of partition " +
                                                         std::to_string(partition) + "."));
        }
    }
    if (histories.empty()) {
        result.fail(Failure(ExitCode::DIFFERENT, "There is no backup in the folder."));
    }
}

}  // namespace Efictl
