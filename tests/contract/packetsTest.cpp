#include "data/HardInstallInfoPacket.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gmock/gmock.h>

#include <limits>

namespace VeskLib::Test {

using testing::ElementsAre;
using testing::IsEmpty;
using VeskUi::HardInstallInfoPacket;
using VeskUi::PartitionInfoPacket;
using VeskUi::SerializableObject;
using VeskUi::VersionInfoPacket;

namespace {

using Bytes = std::vector<unsigned char>;

const int OUTSIDE[] = {std::numeric_limits<int>::min(), -1, 2, 255, 256, 65536,
                       std::numeric_limits<int>::max()};

Bytes serialize(const SerializableObject& object) {
    Bytes bytes(object.getSerializedSize());
    EXPECT_EQ(object.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size())),
              bytes.size());
    return bytes;
}

bool deserialize(SerializableObject& object, const Bytes& bytes) {
    return object.setSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

}  // namespace

TEST(PacketsTest, aPartitionTableThatWasNeverFilledHoldsNone) {
    const PartitionInfoPacket packet;
    for (const int partition : OUTSIDE) {
        SCOPED_TRACE(partition);
        EXPECT_FALSE(packet.isInstalled(partition));
        EXPECT_EQ(packet.getPartitionName(partition), "");
        std::vector<unsigned char> ids = {1, 2};
        packet.getNodeIds(partition, ids);
        EXPECT_THAT(ids, IsEmpty());
    }
}

TEST(PacketsTest, aPartitionTableGivesItsEntriesAndNothingOutside) {
    PartitionInfoPacket packet;
    packet.addPartition({.installed = true, .name = "<\xE8\xA3\xBD>", .nodeIds = {0x10, 0x81}});
    packet.addPartition({.installed = false, .name = "", .nodeIds = {}});
    EXPECT_TRUE(packet.isInstalled(0));
    EXPECT_FALSE(packet.isInstalled(1));
    EXPECT_EQ(packet.getPartitionName(0), "<\xE8\xA3\xBD>");
    std::vector<unsigned char> ids = {9};
    packet.getNodeIds(0, ids);
    EXPECT_THAT(ids, ElementsAre(0x10, 0x81));
    for (const int partition : OUTSIDE) {
        EXPECT_FALSE(packet.isInstalled(partition));
        EXPECT_EQ(packet.getPartitionName(partition), "");
    }
}

TEST(PacketsTest, aPartitionTableSurvivesTheWire) {
    PartitionInfoPacket sent;
    sent.addPartition({.installed = true, .name = "first", .nodeIds = {1, 2, 3}});
    sent.addPartition({.installed = false, .name = "", .nodeIds = {}});
    sent.addPartition({.installed = true, .name = std::string(1000, 'n'), .nodeIds = {}});
    PartitionInfoPacket received;
    ASSERT_TRUE(deserialize(received, serialize(sent)));
    EXPECT_EQ(serialize(received), serialize(sent));
    EXPECT_EQ(received.getPartitionName(2), std::string(1000, 'n'));
}

TEST(PacketsTest, versionsThatWereNeverFilledAreUnknown) {
    const VersionInfoPacket packet;
    for (const int board : OUTSIDE) {
        EXPECT_EQ(packet.getBIOSVersion(board, 0), "-");
    }
}

TEST(PacketsTest, versionsSurviveTheWire) {
    VersionInfoPacket sent;
    sent.addBIOSVersion("1.23 B");
    sent.addBIOSVersion("-");
    VersionInfoPacket received;
    ASSERT_TRUE(deserialize(received, serialize(sent)));
    EXPECT_EQ(received.getBIOSVersion(0, 0), "1.23 B");
    EXPECT_EQ(received.getBIOSVersion(1, 0), "-");
    for (const int board : OUTSIDE) {
        EXPECT_EQ(received.getBIOSVersion(board, 0), "-");
    }
}

TEST(PacketsTest, anAnswerThatIsCutShortIsRefusedAndChangesNothing) {
    PartitionInfoPacket partitions;
    partitions.addPartition({.installed = true, .name = "name", .nodeIds = {1}});
    VersionInfoPacket versions;
    versions.addBIOSVersion("10.20.30");
    for (SerializableObject* object :
         std::initializer_list<SerializableObject*>{&partitions, &versions}) {
        const Bytes bytes = serialize(*object);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            SCOPED_TRACE(size);
            EXPECT_FALSE(deserialize(
                *object, Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))));
            EXPECT_EQ(serialize(*object), bytes);
        }
    }
}

TEST(PacketsTest, installInformationThatWasNeverFilledKnowsNoBoard) {
    const HardInstallInfoPacket packet;
    for (const int kind : {-1, 0, 1, 2, 3, 255}) {
        for (const int number : OUTSIDE) {
            EXPECT_FALSE(packet.isInstalled(kind, number));
            EXPECT_FALSE(packet.isHome(kind, number, 0));
        }
        EXPECT_FALSE(packet.isInstalled(kind, 0));
    }
}

}  // namespace VeskLib::Test
