#pragma once

#include "board/backend/BoardDescription.h"
#include "data/HardInstallInfoPacket.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

namespace VeskLib::Board {

// Fill an empty packet with what the board description says.
void fillPacket(const BoardDescription& description, VeskUi::PartitionInfoPacket& packet);
void fillPacket(const BoardDescription& description, VeskUi::HardInstallInfoPacket& packet);
void fillPacket(const BoardDescription& description, VeskUi::VersionInfoPacket& packet);

}  // namespace VeskLib::Board
