#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include "data/containerExceptions.h"
#include "platform/host/channel/WireText.h"

namespace VeskLib::VeskUi {

namespace {

const std::size_t COUNT_SIZE = 2;
const char* const UNKNOWN_VERSION = "-";
const int RUNNING_BANK = 0;

}  // namespace

VersionInfoPacket::VersionInfoPacket() = default;

VersionInfoPacket::~VersionInfoPacket() = default;

std::string VersionInfoPacket::getBIOSVersion(int systemBoard, int bank) const {
    const auto index = static_cast<std::size_t>(systemBoard);
    const bool known = systemBoard >= 0 && index < biosVersions.size() && bank == RUNNING_BANK;
    return known ? biosVersions[index] : UNKNOWN_VERSION;
}

void VersionInfoPacket::addBIOSVersion(const std::string& version) {
    biosVersions.push_back(version);
}

unsigned int VersionInfoPacket::getSerialized(unsigned char* buffer, unsigned int size) const {
    const unsigned int wanted = getSerializedSize();
    if (size < wanted) {
        throw makeDifferentBufferSize("VersionInfoPacket::getSerialized");
    }
    WireWriter writer(buffer, size);
    writer.writeU16(static_cast<std::uint16_t>(biosVersions.size()));
    for (const std::string& version : biosVersions) {
        Host::writeWireText(writer, version);
    }
    return wanted;
}

unsigned int VersionInfoPacket::getSerializedSize() const {
    std::size_t size = COUNT_SIZE;
    for (const std::string& version : biosVersions) {
        size += Host::wireTextSize(version);
    }
    return static_cast<unsigned int>(size);
}

bool VersionInfoPacket::setSerialized(const unsigned char* buffer, unsigned int size) {
    WireReader reader(buffer, size);
    const unsigned int count = reader.readU16();
    std::vector<std::string> read;
    for (unsigned int i = 0; i < count && !reader.failed(); ++i) {
        read.push_back(Host::readWireText(reader));
    }
    if (reader.failed() || reader.remaining() != 0) {
        return false;
    }
    biosVersions.swap(read);
    return true;
}

}  // namespace VeskLib::VeskUi
