#include "data/HardInstallInfoPacket.h"

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::VeskUi {

bool HardInstallInfoPacket::isInstalled(int kind, int number) const {
    record(describe("HardInstallInfoPacket::isInstalled", kind, number));
    return script().installedBoards.contains(number);
}

bool HardInstallInfoPacket::isHome(int kind, int number, int sub) const {
    record(describe("HardInstallInfoPacket::isHome", kind, number, sub));
    return script().homeBoards.contains(number);
}

// The scripted channel fills packets directly, so serialization does nothing.
unsigned int HardInstallInfoPacket::getSerialized(unsigned char* /*buffer*/,
                                                  unsigned int /*size*/) const {
    return 0;
}

unsigned int HardInstallInfoPacket::getSerializedSize() const {
    return 0;
}

bool HardInstallInfoPacket::setSerialized(const unsigned char* /*buffer*/, unsigned int /*size*/) {
    return true;
}

}  // namespace VeskLib::VeskUi
