#include "data/HardInstallInfoPacket.h"

#include "tests/unit/support/CountedArray.h"
#include "tests/unit/support/ScriptedTest.h"

#include <memory>
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

TEST_F(HardInstallInfoPacketTest, itsRecordsAreZeroWhenMade) {
    EXPECT_EQ(HardInstallInfoPacket::SBData().word, 0u);
    EXPECT_EQ(HardInstallInfoPacket::IOBData().word, 0u);
    EXPECT_EQ(HardInstallInfoPacket::IOBData().halfWord, 0u);
    EXPECT_EQ(HardInstallInfoPacket::GSPBData().word, 0u);
    EXPECT_EQ(HardInstallInfoPacket::GSPBData().halfWord, 0u);
}

}  // namespace VeskLib::Test
