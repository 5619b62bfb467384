#pragma once

#include <VeskLib/VeskUi/SerializablePacket.h>

#include <string>
#include <vector>

namespace VeskLib::VeskUi {

// The server's partitions; none until the packet is filled. A number outside the table reads as a
// partition that is not installed and has no name and no nodes.
class PartitionInfoPacket : public SerializablePacket {
public:
    struct Partition {
        bool installed = false;
        std::string name;                    // UTF-8, as the operator entered it
        std::vector<unsigned char> nodeIds;  // boards of the partition
    };

    PartitionInfoPacket();
    ~PartitionInfoPacket() override;

    bool isInstalled(int partition) const;
    std::string getPartitionName(int partition) const;

    // Replaces `ids` with the node identifiers of the partition, in the packet's order.
    void getNodeIds(int partition, std::vector<unsigned char>& ids) const;

    // Appends the entry of the next partition number.
    void addPartition(const Partition& partition);

    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

private:
    std::vector<Partition> partitions;
};

}  // namespace VeskLib::VeskUi
