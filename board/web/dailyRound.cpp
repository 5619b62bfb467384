#include "board/web/dailyRound.h"

#include "board/web/SkeletonRow.h"
#include "board/web/activityRows.h"
#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/boardRecords.h"
#include "platform/host/channel/takeAnswer.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <map>
#include <string_view>
#include <utility>

namespace VeskLib::Board {

namespace {

const char* const ROW_SKELETON = "/usr/local/www/skel/skeleton_web_round_tbl.txt";

// The menu must appear soon, whatever the back-end does.
const int PATIENCE_MILLISECONDS = 3000;

const std::time_t DAY = 24 * 60 * 60;

enum RoundCaption : int {
    NOT_IN_LOG = 9388,
    DAYS_AGO = 9389,
    ONE_DAY_AGO = 9390,
    LESS_THAN_A_DAY = 9391,
    OUTCOME_UNKNOWN = 9392,
    BY = 9393,
};

int ask(Host::Channel& channel, std::uint32_t number, VeskUi::SerializableObject& packet) {
    Host::RequestFrame request;
    request.number = number;
    Host::ReplyFrame reply;
    const int code = channel.exchange(request, reply);
    if (code != 0) {
        return code;
    }
    return Host::takeAnswer(std::move(reply.payload), packet);
}

// Returns the BIOS version of the partition's home board; "-" if it has none.
std::string versionOf(int partition, const VeskUi::PartitionInfoPacket& partitions,
                      const VeskUi::HardInstallInfoPacket& boards,
                      const VeskUi::VersionInfoPacket& versions) {
    std::vector<unsigned char> nodes;
    partitions.getNodeIds(partition, nodes);
    for (const unsigned char node : nodes) {
        const int board = static_cast<int>(Host::nodeNumber(node));
        if (Host::nodeKind(node) == Host::SYSTEM_BOARD &&
            boards.isInstalled(Host::SYSTEM_BOARD, board) &&
            boards.isHome(Host::SYSTEM_BOARD, board, 0)) {
            return versions.getBIOSVersion(board, 0);
        }
    }
    return "-";
}

std::string ageOf(std::time_t time) {
    const std::time_t days = (std::time(nullptr) - time) / DAY;
    if (days < 1) {
        return caption(LESS_THAN_A_DAY);
    }
    if (days == 1) {
        return caption(ONE_DAY_AGO);
    }
    std::string text = caption(DAYS_AGO);
    const std::size_t mark = text.find("#1");
    return mark == std::string::npos ? text : text.replace(mark, 2, std::to_string(days));
}

class Row : public SkeletonRow {
public:
    Row(const RoundRow& row, bool mayBackUp, bool mayRestore) : SkeletonRow(ROW_SKELETON) {
        put("pid", std::to_string(row.number));
        put("part_name", row.name);
        put("version", row.version);
        putTime("backup", row.backup);
        putTime("restore", row.restore);
        if (mayBackUp) {
            put("may_backup", "1");
        }
        if (mayRestore) {
            put("may_restore", "1");
        }
    }

private:
    void putTime(const std::string& name, const LastTime& last) {
        if (last.time == 0) {
            put(name + "_age", caption(NOT_IN_LOG));
            return;
        }
        put(name + "_age", ageOf(last.time));
        put(name + "_time", localTime(last.time));
        put(name + "_time_utc", utcTime(last.time));
        put(name + "_user", caption(BY) + " " + last.user);
        if (last.uncertain) {
            put(name + "_uncertain", caption(OUTCOME_UNKNOWN));
        }
    }
};

}  // namespace

int askForPartitions(std::vector<RoundRow>& rows) {
    Host::Channel channel(PATIENCE_MILLISECONDS);
    VeskUi::PartitionInfoPacket partitions;
    VeskUi::HardInstallInfoPacket boards;
    VeskUi::VersionInfoPacket versions;
    int code = ask(channel, VeskUi::GET_PARTITION_INFO, partitions);
    code = code != 0 ? code : ask(channel, VeskUi::GET_HARD_INSTALL_INFO, boards);
    code = code != 0 ? code : ask(channel, VeskUi::GET_VERSION_INFO, versions);
    if (code != 0) {
        return code;
    }
    rows.clear();
    const unsigned int count = CommonUtil::getMaxPartitionNum();
    for (unsigned int number = 0; number < count; ++number) {
        const auto partition = static_cast<int>(number);
        if (partitions.isInstalled(partition)) {
            rows.push_back({.number = number,
                            .name = partitions.getPartitionName(partition),
                            .version = versionOf(partition, partitions, boards, versions),
                            .backup = {},
                            .restore = {}});
        }
    }
    return 0;
}

bool findLastTimes(std::vector<RoundRow>& rows) {
    std::map<unsigned int, RoundRow*> byNumber;
    for (RoundRow& row : rows) {
        byNumber[row.number] = &row;
    }
    std::size_t missing = 2 * rows.size();
    RestoreOutcomes outcomes;
    Host::AuditHistory history(MOST_AUDIT_BYTES);
    std::string_view line;
    Host::AuditRecord record;
    while (missing > 0 && history.next(line)) {
        // Skips the parsing of most lines, which are about something else.
        const bool maybe = line.find("\"backup\"") != std::string_view::npos ||
                           line.find("\"restore\"") != std::string_view::npos ||
                           line.find("\"start\"") != std::string_view::npos;
        if (!maybe || !Host::decode(line, record)) {
            continue;
        }
        Host::AuditEvent& event = record.event;
        const bool isRestore = event.event == "restore";
        const bool settled = outcomes.settle(event);
        const bool uncertain = isRestore && event.result == "begun" && !settled;
        const bool done = event.result == "done" || event.result == FOUND_DONE;
        if ((!isRestore && event.event != "backup") || (!done && !uncertain)) {
            continue;
        }
        for (const unsigned int partition : event.partitions) {
            const auto row = byNumber.find(partition);
            if (row == byNumber.end()) {
                continue;
            }
            LastTime& last = isRestore ? row->second->restore : row->second->backup;
            if (last.time == 0) {
                last = {.time = record.time, .user = event.user, .uncertain = uncertain};
                --missing;
            }
        }
    }
    return missing == 0 || !(history.wasCut() || history.wasUnreadable());
}

void printRoundRows(const std::vector<RoundRow>& rows, bool mayBackUp, bool mayRestore) {
    for (const RoundRow& row : rows) {
        Row(row, mayBackUp, mayRestore).print();
    }
}

}  // namespace VeskLib::Board
