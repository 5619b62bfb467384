#include "data/HardInstallInfoPacket.h"

namespace VeskLib::VeskUi {

HardInstallInfoPacket::HardInstallInfoPacket() = default;

HardInstallInfoPacket::~HardInstallInfoPacket() = default;

}  // namespace VeskLib::VeskUi
