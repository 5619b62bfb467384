#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::VeskUi {

VersionInfoPacket::VersionInfoPacket() {
    objectMade(this, "VersionInfoPacket()");
}

VersionInfoPacket::~VersionInfoPacket() {
    objectDeleted(this);
}

std::string VersionInfoPacket::getBIOSVersion(int systemBoard, int bank) const {
    record(describe("getBIOSVersion", systemBoard, bank));
    const auto index = static_cast<std::size_t>(systemBoard);
    return systemBoard >= 0 && index < biosVersions.size() ? biosVersions[index] : "-";
}

void VersionInfoPacket::addBIOSVersion(const std::string& version) {
    biosVersions.push_back(version);
}

// The scripted channel fills packets directly, so serialization does nothing.
unsigned int VersionInfoPacket::getSerialized(unsigned char* /*buffer*/,
                                              unsigned int /*size*/) const {
    return 0;
}

unsigned int VersionInfoPacket::getSerializedSize() const {
    return 0;
}

bool VersionInfoPacket::setSerialized(const unsigned char* /*buffer*/, unsigned int /*size*/) {
    return true;
}

}  // namespace VeskLib::VeskUi
