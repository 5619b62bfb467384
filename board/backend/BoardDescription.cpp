#include "board/backend/BoardDescription.h"

#include <algorithm>

namespace VeskLib::Board {

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
        const SystemBoard& board = systemBoards[Host::nodeNumber(id)];
        if (Host::nodeKind(id) == Host::SYSTEM_BOARD && board.installed && board.home) {
            return board.biosVersion;
        }
    }
    return SystemBoard().biosVersion;
}

}  // namespace VeskLib::Board
