#include "board/backend/boardPackets.h"

#include "board/backend/Refusal.h"
#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "platform/host/channel/boardRecords.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

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

template <typename Packet>
std::vector<unsigned char> makePacket(const BoardDescription& description) {
    Packet packet;
    fillPacket(description, packet);
    std::vector<unsigned char> bytes(packet.getSerializedSize());
    packet.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return bytes;
}

}  // namespace

std::vector<unsigned char> packetFor(unsigned int number, const BoardDescription& description) {
    switch (number) {
        case VeskUi::GET_PARTITION_INFO:
            return makePacket<VeskUi::PartitionInfoPacket>(description);
        case VeskUi::GET_HARD_INSTALL_INFO:
            return makePacket<VeskUi::HardInstallInfoPacket>(description);
        case VeskUi::GET_VERSION_INFO:
            return makePacket<VeskUi::VersionInfoPacket>(description);
        default:
            throw Refusal{Host::BACKEND_UNKNOWN_REQUEST, "nothing to get under this number"};
    }
}

}  // namespace VeskLib::Board
