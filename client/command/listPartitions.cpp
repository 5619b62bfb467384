#include "client/command/OpenBoard.h"
#include "client/command/commands.h"
#include "platform/host/storage/biosVersion.h"

namespace Efictl {

namespace {

using nlohmann::ordered_json;
using VeskLib::Host::isKnownVersion;

ordered_json timeToJSON(const std::string& time) {
    return time.empty() ? ordered_json() : ordered_json(time);
}

ordered_json toJSON(const PartitionRow& row) {
    ordered_json json = partitionToJSON(row.number, row.name, row.version);
    json["home_board_known"] = isKnownVersion(row.version);
    json["last_backup"] = timeToJSON(row.lastBackup);
    json["last_restore"] = timeToJSON(row.lastRestore);
    return json;
}

std::string describe(const PartitionRow& row) {
    return describePartition(row.number, row.name) + ": BIOS " +
           (isKnownVersion(row.version) ? row.version : "unknown (no home board)") +
           ", last backup " + (row.lastBackup.empty() ? "unknown" : row.lastBackup);
}

}  // namespace

void listPartitions(const Options& options, Result& result) {
    OpenBoard board(options);
    const BoardPage menu = board.session().menu();
    result.details["board_name"] =
        menu.boardName.empty() ? ordered_json() : ordered_json(menu.boardName);
    for (const PartitionRow& row : menu.partitions) {
        result.partitions.push_back(toJSON(row));
        result.lines.push_back(describe(row));
    }
    board.close(result);
}

}  // namespace Efictl
