#include "board/inspector/FileReport.h"
#include "client/board/checkDownload.h"
#include "client/command/OpenBoard.h"
#include "client/command/commands.h"
#include "client/folder/BackupFolder.h"
#include "platform/host/base/sha256.h"

namespace Efictl {

namespace {

using nlohmann::ordered_json;
using VeskLib::Board::SaveTime;
using VeskLib::Host::ConfigurationFile;

// The outcome of one partition.
struct PartitionBackup {
    PartitionRow partition;
    std::string status = "skipped";  // until it is tried
    std::string file;
    std::size_t size = 0;
    std::string sha256;
    std::uint32_t saveTime = 0;
    std::vector<std::string> removed;
    std::optional<Result::Reason> reason;
};

ordered_json toJSON(const PartitionBackup& backup) {
    const PartitionRow& partition = backup.partition;
    ordered_json json = partitionToJSON(partition.number, partition.name, partition.version);
    json.update({{"status", backup.status},
                 {"file", nullptr},
                 {"size", nullptr},
                 {"sha256", nullptr},
                 {"saved_on", nullptr},
                 {"removed", backup.removed},
                 {"reason", nullptr}});
    if (!backup.file.empty()) {
        json["file"] = backup.file;
        json["size"] = backup.size;
        json["sha256"] = backup.sha256;
        json["saved_on"] = VeskLib::Board::formatTime(backup.saveTime);
    }
    if (backup.reason) {
        json["reason"] = toJSON(*backup.reason);
    }
    return json;
}

std::string describe(const PartitionBackup& backup) {
    std::string text =
        describePartition(backup.partition.number, backup.partition.name) + ": " + backup.status;
    text += backup.file.empty() ? "" : ", " + backup.file;
    text += backup.reason ? ": " + backup.reason->text : "";
    text += backup.removed.empty()
                ? ""
                : ", " + std::to_string(backup.removed.size()) + " older removed";
    return text;
}

void backUp(const Options& options, BoardSession& board, BackupFolder& folder,
            PartitionBackup& backup) {
    const unsigned int number = backup.partition.number;
    showProgress(options, "Backing up " + describePartition(number, backup.partition.name));
    Bytes bytes = board.backUp(number);
    const ConfigurationFile file = checkDownload(bytes, backup.partition);
    backup.status = "stored";
    backup.saveTime = file.saveTime;
    backup.size = bytes.size();
    backup.sha256 = VeskLib::Host::sha256Hex(bytes);
    if (options.onlyIfChanged) {
        // Frees the download to save memory while the newest backup is read. encode(file)
        // restores it.
        bytes = Bytes();
        const std::optional<Backup> newest = folder.findNewest(number);
        if (newest && compare(newest->file, file, SaveTime::IGNORED).empty()) {
            backup.status = "unchanged";
            backup.file = newest->name.name;
            backup.saveTime = newest->file.saveTime;
            backup.size = newest->size;
            backup.sha256 = newest->sha256;
        }
    }
    if (backup.file.empty()) {
        backup.file = folder.store(number, bytes.empty() ? encode(file) : bytes).name;
    }
    if (options.keep != 0) {
        backup.removed = folder.removeOlder(number, options.keep);
    }
}

// Returns true if the next partition would also fail.
bool endsAll(const Failure& failure) {
    return failure.exitCode() != ExitCode::REFUSED;
}

void addTo(Result& result, const PartitionBackup& backup) {
    result.partitions.push_back(toJSON(backup));
    result.lines.push_back(describe(backup));
    result.changed = result.changed || backup.status == "stored" || !backup.removed.empty();
}

}  // namespace

void backUpPartitions(const Options& options, Result& result) {
    BackupFolder folder(options.folder, BackupFolder::Use::WRITE);
    result.details["folder"] = options.folder;
    OpenBoard board(options);
    const std::vector<PartitionRow> partitions = choosePartitions(board.session().menu(), options);
    bool goesOn = true;
    for (const PartitionRow& partition : partitions) {
        PartitionBackup backup;
        backup.partition = partition;
        try {
            if (goesOn) {
                backUp(options, board.session(), folder, backup);
            }
        } catch (const Failure& failure) {
            // With a file, the backup was stored and only the removal of older ones failed.
            if (backup.file.empty()) {
                backup.status = statusOf(failure);
            }
            backup.reason = Result::Reason{failure.what(), failure.number()};
            result.fail(failure);
            goesOn = !endsAll(failure);
        }
        addTo(result, backup);
    }
    board.close(result);
    if (result.exitCode == ExitCode::DONE && !result.changed && options.unchangedIsDifferent) {
        result.exitCode = ExitCode::DIFFERENT;
        result.reason = Result::Reason{"Nothing has changed since the last backup.", std::nullopt};
    }
}

}  // namespace Efictl
