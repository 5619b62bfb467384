#include "data/HardInstallInfoPacket.h"

#include "tests/unit/support/CountedArray.h"
#include "tests/unit/support/ScriptedTest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>

namespace VeskLib::Test {

using VeskUi::HardInstallInfoPacket;

class HardInstallInfoPacketTest : public ScriptedTest {};

TEST_F(HardInstallInfoPacketTest, holdsElevenEmptyContainersWhenMade) {
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

TEST_F(HardInstallInfoPacketTest, neverFilledReleasesNothingElse) {
    { const HardInstallInfoPacket packet; }
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(HardInstallInfoPacketTest, itsContainersStandInTheOrderOfTheBoard) {
    const HardInstallInfoPacket packet;
    const std::vector<const void*> places = {
        &packet.systemBoards, &packet.firstBoards,   &packet.secondBoards, &packet.ioBoards,
        &packet.gspBoards,    &packet.byteArrays[0], &packet.byteArrays[5]};
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST_F(HardInstallInfoPacketTest, deletesEveryElementOnceAndTheLastCollectionFirst) {
    {
        HardInstallInfoPacket packet;
        packet.firstBoards.elements.push_back(new CountedArray("first collection's"));
        packet.secondBoards.elements.push_back(new CountedArray("second collection's"));
        packet.secondBoards.elements.push_back(new CountedArray("second collection's other"));
    }
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete second collection's",
                                                        "delete second collection's other",
                                                        "delete first collection's"));
}

TEST_F(HardInstallInfoPacketTest, isDeletedAsWhatTravelsOverTheChannel) {
    std::unique_ptr<VeskUi::SerializableObject> object;
    {
        auto packet = std::make_unique<HardInstallInfoPacket>();
        packet->firstBoards.elements.push_back(new CountedArray("board"));
        object = std::move(packet);
    }
    object.reset();
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete board"));
}

// On memory that is not zero, so that a field nobody sets shows.
TEST_F(HardInstallInfoPacketTest, itsRecordsAreZeroWhenMade) {
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
