#include "data/HardInstallInfoPacket.h"
#include "platform/host/channel/boardRecords.h"
#include "tests/backend/support/hexadecimalText.h"

#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gtest/gtest.h>

#include <limits>

namespace VeskLib::Test {

using namespace VeskUi;

namespace {

void expectTooSmallBufferThrows(const SerializableObject& object) {
    const unsigned int size = object.getSerializedSize() - 1;
    Bytes buffer(size);
    EXPECT_THROW(object.getSerialized(buffer.data(), size), PException);
}

}  // namespace

// Partition 0 is installed, named "Test", and consists of system board 3 and I/O board 1; partition
// 1 is not installed.
const char* const PARTITION_BYTES =
    "00 02 "
    "01 00 04 54 65 73 74 00 02 13 21 "
    "00 00 00 00 00";

void fill(PartitionInfoPacket& packet) {
    packet.addPartition({true, "Test", {0x13, 0x21}});
    packet.addPartition({});
}

TEST(PartitionInfoPacket, encodesExample) {
    PartitionInfoPacket packet;
    EXPECT_EQ(toHexadecimal(serialize(packet)), "00 00");
    fill(packet);
    EXPECT_EQ(toHexadecimal(serialize(packet)), PARTITION_BYTES);
    expectTooSmallBufferThrows(packet);
}

TEST(PartitionInfoPacket, decodesExample) {
    PartitionInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, fromHexadecimal(PARTITION_BYTES)));
    EXPECT_TRUE(packet.isInstalled(0));
    EXPECT_EQ(packet.getPartitionName(0), "Test");
    std::vector<unsigned char> ids = {1, 2, 3};
    packet.getNodeIds(0, ids);
    EXPECT_EQ(toHexadecimal(ids), "13 21");
    EXPECT_FALSE(packet.isInstalled(1));
    packet.getNodeIds(1, ids);
    EXPECT_TRUE(ids.empty());
}

TEST(PartitionInfoPacket, unknownPartitionIsNotInstalled) {
    PartitionInfoPacket packet;
    fill(packet);
    for (const int number : {-1, 2, 1000, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(packet.isInstalled(number)) << number;
        EXPECT_EQ(packet.getPartitionName(number), "") << number;
        std::vector<unsigned char> ids = {1};
        packet.getNodeIds(number, ids);
        EXPECT_TRUE(ids.empty()) << number;
    }
}

TEST(PartitionInfoPacket, truncatedBytesAreRejectedAndChangeNothing) {
    const Bytes whole = fromHexadecimal(PARTITION_BYTES);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        PartitionInfoPacket packet;
        packet.addPartition({true, "kept", {}});
        EXPECT_FALSE(deserialize(packet, cut(whole, size))) << size;
        EXPECT_EQ(packet.getPartitionName(0), "kept") << size;
    }
}

TEST(PartitionInfoPacket, rejectsTrailingByteAndUnknownFlag) {
    PartitionInfoPacket packet;
    EXPECT_FALSE(deserialize(packet, fromHexadecimal(std::string(PARTITION_BYTES) + "00")));
    EXPECT_FALSE(deserialize(packet, fromHexadecimal("00 01 02 00 00 00 00")));
}

TEST(PartitionInfoPacket, decodingReplacesOldContents) {
    PartitionInfoPacket packet;
    fill(packet);
    ASSERT_TRUE(deserialize(packet, fromHexadecimal("00 00")));
    EXPECT_FALSE(packet.isInstalled(0));
    EXPECT_EQ(packet.getSerializedSize(), 2U);
}

const char* const VERSION_BYTES = "00 02 00 06 31 2E 32 33 20 42 00 01 2D";

TEST(VersionInfoPacket, encodesExample) {
    VersionInfoPacket packet;
    EXPECT_EQ(toHexadecimal(serialize(packet)), "00 00");
    packet.addBIOSVersion("1.23 B");
    packet.addBIOSVersion("-");
    EXPECT_EQ(toHexadecimal(serialize(packet)), VERSION_BYTES);
    expectTooSmallBufferThrows(packet);
}

TEST(VersionInfoPacket, decodesExample) {
    VersionInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, fromHexadecimal(VERSION_BYTES)));
    EXPECT_EQ(packet.getBIOSVersion(0, 0), "1.23 B");
    EXPECT_EQ(packet.getBIOSVersion(1, 0), "-");
}

TEST(VersionInfoPacket, unknownBoardHasUnknownVersion) {
    VersionInfoPacket packet;
    packet.addBIOSVersion("1.23 B");
    for (const int board : {-1, 1, 255, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(packet.getBIOSVersion(board, 0), "-") << board;
    }
    EXPECT_EQ(packet.getBIOSVersion(0, 1), "-");
}

TEST(VersionInfoPacket, truncatedBytesAreRejectedAndChangeNothing) {
    const Bytes whole = fromHexadecimal(VERSION_BYTES);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        VersionInfoPacket packet;
        packet.addBIOSVersion("kept");
        EXPECT_FALSE(deserialize(packet, cut(whole, size))) << size;
        EXPECT_EQ(packet.getBIOSVersion(0, 0), "kept") << size;
    }
}

TEST(VersionInfoPacket, rejectsTrailingByte) {
    VersionInfoPacket packet;
    EXPECT_FALSE(deserialize(packet, fromHexadecimal(std::string(VERSION_BYTES) + "00")));
}

// Two system boards (one installed, one installed and home), an element in the first collection,
// one I/O board, one GSP board, one byte in the first byte array.
const char* const HARDWARE_BYTES =
    "00 00 00 0A 00 02 80 00 00 00 C0 00 00 00 "
    "00 00 00 07 00 01 00 03 00 01 41 "
    "00 00 00 02 00 00 "
    "00 00 00 08 00 01 80 00 00 00 00 00 "
    "00 00 00 08 00 01 80 00 00 00 00 00 "
    "00 00 00 03 00 01 42 "
    "00 00 00 02 00 00 00 00 00 02 00 00 00 00 00 02 00 00 "
    "00 00 00 02 00 00 00 00 00 02 00 00";

void fill(HardInstallInfoPacket& packet) {
    packet.systemBoards.records.push_back({Host::BOARD_INSTALLED});
    packet.systemBoards.records.push_back({Host::BOARD_INSTALLED | Host::BOARD_IS_HOME});
    auto element = std::make_unique<PrimitiveTypeArray<unsigned char>>();
    element->records.push_back(0x41);
    packet.firstBoards.elements.push_back(std::move(element));
    packet.ioBoards.records.push_back({Host::BOARD_INSTALLED, 0});
    packet.gspBoards.records.push_back({Host::BOARD_INSTALLED, 0});
    packet.byteArrays[0].records.push_back(0x42);
}

TEST(HardInstallInfoPacket, encodesExample) {
    HardInstallInfoPacket packet;
    EXPECT_EQ(packet.getSerializedSize(), 11U * 6);
    fill(packet);
    EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES);
    expectTooSmallBufferThrows(packet);
}

TEST(HardInstallInfoPacket, decodesExample) {
    HardInstallInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, fromHexadecimal(HARDWARE_BYTES)));
    EXPECT_TRUE(packet.isInstalled(Host::SYSTEM_BOARD, 0));
    EXPECT_TRUE(packet.isInstalled(Host::SYSTEM_BOARD, 1));
    EXPECT_FALSE(packet.isHome(Host::SYSTEM_BOARD, 0, 0));
    EXPECT_TRUE(packet.isHome(Host::SYSTEM_BOARD, 1, 0));
    EXPECT_TRUE(packet.isInstalled(Host::IO_BOARD, 0));
    EXPECT_TRUE(packet.isInstalled(Host::GSP_BOARD, 0));
    EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES);
}

TEST(HardInstallInfoPacket, unknownBoardIsNeitherInstalledNorHome) {
    HardInstallInfoPacket packet;
    fill(packet);
    for (const int number : {-1, 2, 255, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(packet.isInstalled(Host::SYSTEM_BOARD, number)) << number;
        EXPECT_FALSE(packet.isHome(Host::SYSTEM_BOARD, number, 0)) << number;
    }
    for (const int kind : {-1, 3, 255}) {
        EXPECT_FALSE(packet.isInstalled(kind, 1)) << kind;
    }
    EXPECT_FALSE(packet.isHome(Host::IO_BOARD, 1, 0));
    EXPECT_FALSE(packet.isHome(Host::SYSTEM_BOARD, 1, 1));
}

TEST(HardInstallInfoPacket, truncatedBytesAreRejectedAndChangeNothing) {
    const Bytes whole = fromHexadecimal(HARDWARE_BYTES);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        HardInstallInfoPacket packet;
        fill(packet);
        EXPECT_FALSE(deserialize(packet, cut(whole, size))) << size;
        EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES) << size;
    }
}

TEST(HardInstallInfoPacket, rejectsTrailingByte) {
    HardInstallInfoPacket packet;
    EXPECT_FALSE(deserialize(packet, fromHexadecimal(std::string(HARDWARE_BYTES) + "00")));
}

TEST(HardInstallInfoPacket, rejectsMemberWithWrongLength) {
    Bytes bytes = fromHexadecimal(HARDWARE_BYTES);
    bytes[3] = 0x0B;  // the first member takes a byte of the second's length
    HardInstallInfoPacket packet;
    EXPECT_FALSE(deserialize(packet, bytes));

    // An array ignores bytes after its records, but a packet rejects them.
    bytes = fromHexadecimal(HARDWARE_BYTES);
    bytes[5] = 0x01;
    EXPECT_FALSE(deserialize(packet, bytes));
}

TEST(HardInstallInfoPacket, rejectsWrongLengthsThatCancelOut) {
    // A collection of two elements: one of no bytes, so without a count, and an empty one followed
    // by two extra bytes. Serialized again they would have the same length as the input.
    const std::string empty = "000000020000";
    std::string text = empty +
                       "0000000A"
                       "0002"
                       "0000"
                       "0004"
                       "00007A7A";
    for (int member = 2; member < 11; ++member) {
        text += empty;
    }
    HardInstallInfoPacket packet;
    fill(packet);
    EXPECT_FALSE(deserialize(packet, fromHexadecimal(text)));
    EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES);
}

TEST(HardInstallInfoPacket, malformedCollectionThrowsAndChangesNothing) {
    Bytes bytes = fromHexadecimal(HARDWARE_BYTES);
    bytes[21] = 0x04;  // the collection's element runs past the end of the collection
    HardInstallInfoPacket packet;
    fill(packet);
    EXPECT_THROW(deserialize(packet, bytes), PException);
    EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES);
}

TEST(HardInstallInfoPacket, decodingReplacesOldContents) {
    HardInstallInfoPacket packet;
    const Bytes bytes = fromHexadecimal(HARDWARE_BYTES);
    ASSERT_TRUE(deserialize(packet, bytes));
    ASSERT_TRUE(deserialize(packet, bytes));
    EXPECT_EQ(toHexadecimal(serialize(packet)), HARDWARE_BYTES);
}

}  // namespace VeskLib::Test
