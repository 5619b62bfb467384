#include "board/inspector/FileReport.h"
#include "client/command/OpenBoard.h"
#include "client/command/commands.h"
#include "client/command/localFile.h"
#include "platform/host/html/escape.h"
#include "platform/host/storage/biosVersion.h"

#include <algorithm>

namespace Efictl {

namespace {

using nlohmann::ordered_json;
using VeskLib::Host::fitTogether;
using VeskLib::Host::isKnownVersion;
using VeskLib::Host::makeVisible;

// Throws Failure (REFUSED) if the board's page shows other values than the uploaded file contains.
void compareFile(const Selection& selection, const LocalFile& local) {
    const auto demand = [](bool holds, const std::string& what) {
        if (!holds) {
            throw Failure(ExitCode::REFUSED, "The board shows another " + what +
                                                 " than the file contains. Nothing was restored.");
        }
    };
    demand(selection.stagedFile == local.sha256, "SHA-256");
    demand(selection.partition == local.file.partition, "partition number");
    demand(selection.partitionName == makeVisible(local.file.partitionName), "partition name");
    demand(selection.version == makeVisible(local.file.version), "BIOS version");
}

// Throws Failure (REFUSED) if the options or the BIOS versions do not allow a target.
void judgeTarget(const PartitionRow& target, const LocalFile& local, const Options& options) {
    const std::string name = describePartition(target.number);
    const std::string version = makeVisible(local.file.version);
    const bool areKnown = isKnownVersion(target.version) && isKnownVersion(version);
    const auto demand = [&name](bool holds, const std::string& why) {
        if (!holds) {
            throw Failure(ExitCode::REFUSED, name + why + " Nothing was restored.");
        }
    };
    demand(!options.requirePartition || target.number == local.file.partition,
           " is not the partition that the file was saved from, which is " +
               std::to_string(local.file.partition) + ".");
    demand(!options.requireSameVersion || (areKnown && target.version == version),
           " has the BIOS version " + target.version + ", the file has " + version +
               ", and --require-same-version is given.");
    demand(fitTogether(version, target.version),
           " has the BIOS version " + target.version + " and does not accept a file of " + version +
               ": the numbers before the first dot must be the same.");
}

ordered_json makePlan(const LocalFile& local) {
    return {{"file", local.path},
            {"sha256", local.sha256},
            {"saved_on", VeskLib::Board::formatTime(local.file.saveTime)},
            {"partition", local.file.partition},
            {"name", local.file.partitionName},
            {"bios_version", versionToJSON(local.file.version)}};
}

ordered_json toJSON(const PartitionRow& target, const LocalFile& local) {
    const std::string version = makeVisible(local.file.version);
    ordered_json same;
    if (isKnownVersion(target.version) && isKnownVersion(version)) {
        same = target.version == version;
    }
    ordered_json json = partitionToJSON(target.number, target.name, target.version);
    json.update({{"same_partition", target.number == local.file.partition},
                 {"same_version", same},
                 {"status", "planned"}});
    return json;
}

void setStatus(Result& result, const char* status) {
    for (ordered_json& partition : result.partitions) {
        partition["status"] = status;
    }
}

void describePlan(const LocalFile& local, const std::vector<PartitionRow>& targets,
                  Result& result) {
    result.lines.push_back(local.path + ": saved from " +
                           describePartition(local.file.partition, local.file.partitionName) +
                           " on " + VeskLib::Board::formatTime(local.file.saveTime) + ", BIOS " +
                           local.file.version);
    for (const PartitionRow& target : targets) {
        result.lines.push_back("To " + describePartition(target.number, target.name) + ", BIOS " +
                               (isKnownVersion(target.version) ? target.version : "unknown"));
    }
}

}  // namespace

void restorePartitions(const Options& options, Result& result) {
    result.details = {{"dry_run", options.dryRun}, {"plan", nullptr}};
    const LocalFile local = readLocalFile(options.files.front());
    OpenBoard board(options);
    BoardPage shown;
    {
        showProgress(options, "Uploading " + local.path);
        const Selection selection = board.session().upload(local.bytes());
        compareFile(selection, local);
        shown.partitions = selection.targets;
    }
    const std::vector<PartitionRow> targets = choosePartitions(shown, options);
    result.details["plan"] = makePlan(local);
    for (const PartitionRow& target : targets) {
        result.partitions.push_back(toJSON(target, local));
    }
    describePlan(local, targets, result);
    try {
        std::vector<unsigned int> numbers;
        for (const PartitionRow& target : targets) {
            judgeTarget(target, local, options);
            numbers.push_back(target.number);
        }
        if (options.dryRun) {
            result.lines.emplace_back("Nothing was restored: this is a dry run.");
        } else {
            showProgress(options, "Restoring");
            board.session().restore(local.sha256, numbers);
            setStatus(result, "restored");
            result.changed = true;
            result.lines.emplace_back("Restored.");
        }
    } catch (const Failure& failure) {
        setStatus(result, statusOf(failure));
        // If the outcome is unknown, callers must assume a change.
        result.changed = failure.exitCode() == ExitCode::UNKNOWN;
        result.fail(failure);
    }
    board.close(result);
}

}  // namespace Efictl
