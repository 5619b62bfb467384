#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::VeskUi {

namespace {

const PartitionInfoPacket::Partition& find(
    const std::vector<PartitionInfoPacket::Partition>& partitions, int partition) {
    static const PartitionInfoPacket::Partition NONE;
    const auto index = static_cast<std::size_t>(partition);
    return partition >= 0 && index < partitions.size() ? partitions[index] : NONE;
}

}  // namespace

PartitionInfoPacket::PartitionInfoPacket() {
    objectMade(this, "PartitionInfoPacket()");
}

PartitionInfoPacket::~PartitionInfoPacket() {
    objectDeleted(this);
}

bool PartitionInfoPacket::isInstalled(int partition) const {
    record(describe("PartitionInfoPacket::isInstalled", partition));
    return find(partitions, partition).installed;
}

std::string PartitionInfoPacket::getPartitionName(int partition) const {
    record(describe("getPartitionName", partition));
    return find(partitions, partition).name;
}

void PartitionInfoPacket::getNodeIds(int partition, std::vector<unsigned char>& ids) const {
    record(describe("getNodeIds", partition));
    ids = find(partitions, partition).nodeIds;
}

void PartitionInfoPacket::addPartition(const Partition& partition) {
    partitions.push_back(partition);
}

// The scripted channel fills packets directly, so serialization does nothing.
unsigned int PartitionInfoPacket::getSerialized(unsigned char* /*buffer*/,
                                                unsigned int /*size*/) const {
    return 0;
}

unsigned int PartitionInfoPacket::getSerializedSize() const {
    return 0;
}

bool PartitionInfoPacket::setSerialized(const unsigned char* /*buffer*/, unsigned int /*size*/) {
    return true;
}

}  // namespace VeskLib::VeskUi
