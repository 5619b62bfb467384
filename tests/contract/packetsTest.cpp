#include "data/HardInstallInfoPacket.h"

#include "tests/contract/platformSpecifics.h"
#include "tests/contract/wire.h"

#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gmock/gmock.h>

#include <limits>
#include <memory>

namespace VeskLib::Test {

using testing::ElementsAre;
using testing::IsEmpty;
using VeskUi::HardInstallInfoPacket;
using VeskUi::PartitionInfoPacket;
using VeskUi::PrimitiveTypeArray;
using VeskUi::SerializableObject;
using VeskUi::VersionInfoPacket;

namespace {

const int OUTSIDE[] = {std::numeric_limits<int>::min(), -1, 2, 255, 256, 65536,
                       std::numeric_limits<int>::max()};

const int SYSTEM_BOARD = 0;

struct SystemBoard {
    bool installed;
    bool home;
};

const std::vector<SystemBoard> BOARDS = {{true, true}, {false, false}, {true, false}, {true, true}};

// Fills every member with different values.
void fill(HardInstallInfoPacket& packet) {
    for (const SystemBoard& board : BOARDS) {
        packet.systemBoards.records.emplace_back();
        packet.systemBoards.records.back().word = systemBoardWord(board.installed, board.home);
    }
    for (auto* boards : {&packet.firstBoards, &packet.secondBoards}) {
        auto element = std::make_unique<PrimitiveTypeArray<unsigned char>>();
        element->records = {static_cast<unsigned char>(boards == &packet.firstBoards ? 1 : 2), 7};
        boards->elements.push_back(std::move(element));
    }
    packet.ioBoards.records.emplace_back();
    packet.ioBoards.records.back().word = 0x01020304;
    packet.ioBoards.records.back().halfWord = 0x0506;
    packet.gspBoards.records.emplace_back();
    packet.gspBoards.records.back().word = 0xF1F2F3F4;
    packet.gspBoards.records.back().halfWord = 0xF5F6;
    for (std::size_t i = 0; i < std::size(packet.byteArrays); ++i) {
        packet.byteArrays[i].records = {static_cast<unsigned char>(i), 0xFF};
    }
}

}  // namespace

TEST(PacketsTest, emptyPartitionTableHasNoPartitions) {
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

TEST(PacketsTest, partitionTableReturnsOnlyItsEntries) {
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

TEST(PacketsTest, partitionTableSurvivesSerialization) {
    PartitionInfoPacket sent;
    sent.addPartition({.installed = true, .name = "first", .nodeIds = {1, 2, 3}});
    sent.addPartition({.installed = false, .name = "", .nodeIds = {}});
    sent.addPartition({.installed = true, .name = std::string(1000, 'n'), .nodeIds = {}});
    PartitionInfoPacket received;
    ASSERT_TRUE(deserialize(received, serialize(sent)));
    EXPECT_EQ(serialize(received), serialize(sent));
    EXPECT_EQ(received.getPartitionName(2), std::string(1000, 'n'));
}

TEST(PacketsTest, emptyVersionTableReturnsUnknown) {
    const VersionInfoPacket packet;
    for (const int board : OUTSIDE) {
        EXPECT_EQ(packet.getBIOSVersion(board, 0), "-");
    }
    EXPECT_EQ(packet.getBIOSVersion(0, 0), "-");
}

TEST(PacketsTest, versionTableSurvivesSerialization) {
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

TEST(PacketsTest, truncatedAnswerIsRejectedAndChangesNothing) {
    PartitionInfoPacket partitions;
    partitions.addPartition({.installed = true, .name = "name", .nodeIds = {1}});
    VersionInfoPacket versions;
    versions.addBIOSVersion("10.20.30");
    HardInstallInfoPacket boards;
    fill(boards);
    for (SerializableObject* object :
         std::initializer_list<SerializableObject*>{&partitions, &versions, &boards}) {
        const Bytes bytes = serialize(*object);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            SCOPED_TRACE(size);
            EXPECT_FALSE(deserialize(
                *object, Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))));
            EXPECT_EQ(serialize(*object), bytes);
        }
    }
}

TEST(PacketsTest, emptyInstallInformationHasNoBoards) {
    const HardInstallInfoPacket packet;
    for (const int kind : {-1, 0, 1, 2, 3, 255}) {
        for (const int number : OUTSIDE) {
            EXPECT_FALSE(packet.isInstalled(kind, number));
            EXPECT_FALSE(packet.isHome(kind, number, 0));
        }
        EXPECT_FALSE(packet.isInstalled(kind, 0));
    }
}

TEST(PacketsTest, installInformationReturnsItsSystemBoards) {
    HardInstallInfoPacket packet;
    fill(packet);
    for (std::size_t number = 0; number < BOARDS.size(); ++number) {
        SCOPED_TRACE(number);
        EXPECT_EQ(packet.isInstalled(SYSTEM_BOARD, static_cast<int>(number)),
                  BOARDS[number].installed);
        EXPECT_EQ(packet.isHome(SYSTEM_BOARD, static_cast<int>(number), 0), BOARDS[number].home);
    }
    EXPECT_FALSE(packet.isInstalled(SYSTEM_BOARD, static_cast<int>(BOARDS.size())));
    EXPECT_FALSE(packet.isInstalled(SYSTEM_BOARD, -1));
    EXPECT_FALSE(packet.isHome(SYSTEM_BOARD, static_cast<int>(BOARDS.size()), 0));
}

TEST(PacketsTest, installInformationSurvivesSerialization) {
    HardInstallInfoPacket sent;
    fill(sent);
    HardInstallInfoPacket received;
    ASSERT_TRUE(deserialize(received, serialize(sent)));
    EXPECT_EQ(serialize(received), serialize(sent));
    ASSERT_EQ(received.systemBoards.records.size(), BOARDS.size());
    ASSERT_EQ(received.firstBoards.elements.size(), 1u);
    ASSERT_EQ(received.secondBoards.elements.size(), 1u);
    EXPECT_THAT(received.firstBoards.elements[0]->records, ElementsAre(1, 7));
    EXPECT_THAT(received.secondBoards.elements[0]->records, ElementsAre(2, 7));
    ASSERT_EQ(received.ioBoards.records.size(), 1u);
    ASSERT_EQ(received.gspBoards.records.size(), 1u);
    for (std::size_t number = 0; number < BOARDS.size(); ++number) {
        EXPECT_EQ(received.systemBoards.records[number].word,
                  sent.systemBoards.records[number].word);
    }
    EXPECT_TRUE(received.ioBoards.records[0].word == 0x01020304u);
    EXPECT_TRUE(received.ioBoards.records[0].halfWord == 0x0506u);
    EXPECT_TRUE(received.gspBoards.records[0].word == 0xF1F2F3F4u);
    EXPECT_TRUE(received.gspBoards.records[0].halfWord == 0xF5F6u);
    for (std::size_t i = 0; i < std::size(received.byteArrays); ++i) {
        EXPECT_THAT(received.byteArrays[i].records, ElementsAre(i, 0xFF));
    }
}

TEST(PacketsTest, deserializingReplacesInstallInformation) {
    HardInstallInfoPacket packet;
    fill(packet);
    const Bytes bytes = serialize(packet);
    ASSERT_TRUE(deserialize(packet, bytes));
    EXPECT_EQ(serialize(packet), bytes);
}

TEST(PacketsTest, serializingIntoTooSmallBufferThrows) {
    HardInstallInfoPacket packet;
    fill(packet);
    Bytes buffer(packet.getSerializedSize());
    EXPECT_THROW(packet.getSerialized(buffer.data(), static_cast<unsigned int>(buffer.size() - 1)),
                 PException);
}

}  // namespace VeskLib::Test
