#include "board/backend/BoardDescription.h"

#include <algorithm>

namespace VeskLib::Board {

namespace {

// A node identifier holds the kind of board in its three high bits and the board's number in its
// four low bits. Bit 4 says nothing about which board it is.
const unsigned int KIND_SHIFT = 5;
const unsigned int NUMBER_MASK = 0x0F;

}  // namespace

bool BoardDescription::isInstalled(unsigned int partition) const {
    return partition < partitions.size() && partitions[partition].installed;
}

const User* BoardDescription::findUser(const std::string& name) const {
    const auto found = std::find_if(users.begin(), users.end(),
                                    [&name](const User& user) { return user.name == name; });
    return found == users.end() ? nullptr : &*found;
}

std::string BoardDescription::biosVersionOf(const PartitionDescription& partition) const {
    for (const unsigned char id : partition.nodeIds) {
        const SystemBoard& board = systemBoards[id & NUMBER_MASK];
        if (id >> KIND_SHIFT == Host::SYSTEM_BOARD && board.installed && board.home) {
            return board.biosVersion;
        }
    }
    return SystemBoard().biosVersion;
}

}  // namespace VeskLib::Board
