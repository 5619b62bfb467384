#include "data/HardInstallInfoPacket.h"

#include "tests/unit/support/CountedArray.h"
#include "tests/unit/support/ScriptedTest.h"
#include "tests/unit/support/heapCalls.h"

#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace VeskLib::Test {

using VeskUi::HardInstallInfoPacket;

class HardInstallInfoPacketTest : public ScriptedTest {};

TEST_F(HardInstallInfoPacketTest, startsWithElevenEmptyContainers) {
    const HardInstallInfoPacket packet;
    EXPECT_THAT(packet.systemBoards.records, testing::IsEmpty());
    EXPECT_THAT(packet.firstBoards.elements, testing::IsEmpty());
    EXPECT_THAT(packet.secondBoards.elements, testing::IsEmpty());
    EXPECT_THAT(packet.ioBoards.records, testing::IsEmpty());
    EXPECT_THAT(packet.gspBoards.records, testing::IsEmpty());
    EXPECT_EQ(std::extent_v<decltype(packet.byteArrays)>, 6u);
    for (const auto& array : packet.byteArrays) {
        EXPECT_THAT(array.records, testing::IsEmpty());
    }
}

class HardInstallInfoMemoryTest : public HardInstallInfoPacketTest {
protected:
    void SetUp() override {
        if (!countsHeapCalls()) {
            GTEST_SKIP() << "another tool has replaced the operators";
        }
    }
};

TEST_F(HardInstallInfoMemoryTest, usesNoHeapWhenNeverFilled) {
    const HeapCalls before = heapCalls();
    { const HardInstallInfoPacket packet; }
    const HeapCalls after = heapCalls();
    EXPECT_EQ(after.allocations, before.allocations);
    EXPECT_EQ(after.releases, before.releases);
}

TEST_F(HardInstallInfoMemoryTest, releasesMemoryOfItsContainers) {
    const HeapCalls before = heapCalls();
    {
        HardInstallInfoPacket packet;
        packet.ioBoards.records.resize(1);
        packet.byteArrays[5].records.resize(1);
    }
    const HeapCalls after = heapCalls();
    EXPECT_EQ(after.allocations - before.allocations, 2u);
    EXPECT_EQ(after.releases - before.releases, 2u);
}

// A board's library may access the records as an array in memory.
TEST_F(HardInstallInfoPacketTest, packsRecordsInMemory) {
    HardInstallInfoPacket packet;
    packet.ioBoards.records.resize(3);
    packet.gspBoards.records.resize(3);
    packet.systemBoards.records.resize(3);
    const auto distance = [](const auto& records) {
        return reinterpret_cast<const char*>(&records[2]) -
               reinterpret_cast<const char*>(&records[0]);
    };
    EXPECT_EQ(distance(packet.ioBoards.records), 12);
    EXPECT_EQ(distance(packet.gspBoards.records), 12);
    EXPECT_EQ(distance(packet.systemBoards.records), 8);
    const auto* first = reinterpret_cast<const char*>(packet.ioBoards.records.data());
    EXPECT_EQ(reinterpret_cast<const char*>(&packet.ioBoards.records[0].halfWord) - first, 4);
}

TEST_F(HardInstallInfoPacketTest, deletesEveryElementOnceLastCollectionFirst) {
    {
        HardInstallInfoPacket packet;
        packet.firstBoards.elements.push_back(std::make_unique<CountedArray>("first collection's"));
        packet.secondBoards.elements.push_back(
            std::make_unique<CountedArray>("second collection's"));
        packet.secondBoards.elements.push_back(
            std::make_unique<CountedArray>("second collection's other"));
    }
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete second collection's",
                                                        "delete second collection's other",
                                                        "delete first collection's"));
}

TEST_F(HardInstallInfoPacketTest, isDeletableAsSerializableObject) {
    std::unique_ptr<VeskUi::SerializableObject> object;
    {
        auto packet = std::make_unique<HardInstallInfoPacket>();
        packet->firstBoards.elements.push_back(std::make_unique<CountedArray>("board"));
        object = std::move(packet);
    }
    object.reset();
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete board"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(HardInstallInfoPacketTest, zeroInitializesRecords) {
    std::array<std::uint32_t, 2> memory;
    const auto makeOnUsedMemory = [&]<typename Record>(Record*) {
        memory.fill(0xA5A5A5A5);
        return new (memory.data()) Record;
    };
    EXPECT_EQ(makeOnUsedMemory(static_cast<HardInstallInfoPacket::SBData*>(nullptr))->word, 0u);
    const auto* ioBoard = makeOnUsedMemory(static_cast<HardInstallInfoPacket::IOBData*>(nullptr));
    EXPECT_EQ(ioBoard->word, 0u);
    EXPECT_EQ(ioBoard->halfWord, 0u);
    const auto* gspBoard = makeOnUsedMemory(static_cast<HardInstallInfoPacket::GSPBData*>(nullptr));
    EXPECT_EQ(gspBoard->word, 0u);
    EXPECT_EQ(gspBoard->halfWord, 0u);
}

}  // namespace VeskLib::Test
