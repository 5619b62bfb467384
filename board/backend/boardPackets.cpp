#include "board/backend/boardPackets.h"

#include "platform/host/channel/boardRecords.h"

namespace VeskLib::Board {

namespace {

template <typename Record>
void addBoards(const BoardDescription::Boards& boards, std::vector<Record>& records) {
    for (const bool installed : boards) {
        Record record;
        record.word = installed ? Host::BOARD_INSTALLED : 0;
        records.push_back(record);
    }
}

}  // namespace

void fillPacket(const BoardDescription& description, VeskUi::PartitionInfoPacket& packet) {
    for (const PartitionDescription& partition : description.partitions) {
        packet.addPartition({partition.installed, partition.name, partition.nodeIds});
    }
}

void fillPacket(const BoardDescription& description, VeskUi::HardInstallInfoPacket& packet) {
    for (const SystemBoard& board : description.systemBoards) {
        VeskUi::HardInstallInfoPacket::SBData record;
        record.word |= board.installed ? Host::BOARD_INSTALLED : 0;
        record.word |= board.home ? Host::BOARD_IS_HOME : 0;
        packet.systemBoards.records.push_back(record);
    }
    addBoards(description.ioBoards, packet.ioBoards.records);
    addBoards(description.gspBoards, packet.gspBoards.records);
}

void fillPacket(const BoardDescription& description, VeskUi::VersionInfoPacket& packet) {
    for (const SystemBoard& board : description.systemBoards) {
        packet.addBIOSVersion(board.biosVersion);
    }
}

}  // namespace VeskLib::Board
