#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include "data/containerExceptions.h"
#include "platform/host/channel/WireText.h"

namespace VeskLib::VeskUi {

namespace {

const std::size_t COUNT_SIZE = 2;
const std::size_t FLAG_SIZE = 1;

const PartitionInfoPacket::Partition* find(
    const std::vector<PartitionInfoPacket::Partition>& partitions, int number) {
    const auto index = static_cast<std::size_t>(number);
    return number >= 0 && index < partitions.size() ? &partitions[index] : nullptr;
}

void writePartition(WireWriter& writer, const PartitionInfoPacket::Partition& partition) {
    Host::writeU8(writer, partition.installed ? 1 : 0);
    Host::writeWireText(writer, partition.name);
    writer.writeU16(static_cast<std::uint16_t>(partition.nodeIds.size()));
    writer.writeBytes(partition.nodeIds.data(), partition.nodeIds.size());
}

// Returns false if the entry is incomplete or its flag is invalid.
bool readPartition(WireReader& reader, PartitionInfoPacket::Partition& partition) {
    const std::uint8_t flag = Host::readU8(reader);
    partition.installed = flag == 1;
    partition.name = Host::readWireText(reader);
    const std::size_t count = reader.readU16();
    const unsigned char* ids = reader.readBytes(count);
    if (reader.failed() || flag > 1) {
        return false;
    }
    partition.nodeIds.assign(ids, ids + count);
    return true;
}

}  // namespace

PartitionInfoPacket::PartitionInfoPacket() = default;

PartitionInfoPacket::~PartitionInfoPacket() = default;

bool PartitionInfoPacket::isInstalled(int partition) const {
    const Partition* found = find(partitions, partition);
    return found != nullptr && found->installed;
}

std::string PartitionInfoPacket::getPartitionName(int partition) const {
    const Partition* found = find(partitions, partition);
    return found == nullptr ? std::string() : found->name;
}

void PartitionInfoPacket::getNodeIds(int partition, std::vector<unsigned char>& ids) const {
    const Partition* found = find(partitions, partition);
    ids = found == nullptr ? std::vector<unsigned char>() : found->nodeIds;
}

void PartitionInfoPacket::addPartition(const Partition& partition) {
    partitions.push_back(partition);
}

unsigned int PartitionInfoPacket::getSerialized(unsigned char* buffer, unsigned int size) const {
    const unsigned int wanted = getSerializedSize();
    if (size < wanted) {
        throw makeDifferentBufferSize("PartitionInfoPacket::getSerialized");
    }
    WireWriter writer(buffer, size);
    writer.writeU16(static_cast<std::uint16_t>(partitions.size()));
    for (const Partition& partition : partitions) {
        writePartition(writer, partition);
    }
    return wanted;
}

unsigned int PartitionInfoPacket::getSerializedSize() const {
    std::size_t size = COUNT_SIZE;
    for (const Partition& partition : partitions) {
        size +=
            FLAG_SIZE + Host::wireTextSize(partition.name) + COUNT_SIZE + partition.nodeIds.size();
    }
    return static_cast<unsigned int>(size);
}

bool PartitionInfoPacket::setSerialized(const unsigned char* buffer, unsigned int size) {
    WireReader reader(buffer, size);
    const unsigned int count = reader.readU16();
    std::vector<Partition> read;
    for (unsigned int i = 0; i < count; ++i) {
        Partition partition;
        if (!readPartition(reader, partition)) {
            return false;
        }
        read.push_back(partition);
    }
    if (reader.failed() || reader.remaining() != 0) {
        return false;
    }
    partitions.swap(read);
    return true;
}

}  // namespace VeskLib::VeskUi
