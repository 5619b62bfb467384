#include "board/backend/controlOrder.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace VeskLib::Test {

using Board::carryOutOrder;
using Board::FaultSwitches;

namespace {

// Returns the answer to an order when no fault is switched on, or "refused: " and the reason.
std::string answerTo(const std::string& order) {
    FaultSwitches switches;
    try {
        return carryOutOrder(order, switches);
    } catch (const std::invalid_argument& problem) {
        return std::string("refused: ") + problem.what();
    }
}

}  // namespace

TEST(ControlOrderTest, everyOrderReturnsActiveFaults) {
    EXPECT_EQ(answerTo("status"), "");
    EXPECT_EQ(answerTo("refuse 33620132 1047 2"),
              "request 33620132 is refused with code 1047, 2 times\n");
    EXPECT_EQ(answerTo("slow 1500 3"), "requests wait 1500 ms, 3 times\n");
    EXPECT_EQ(answerTo("silent 4"), "requests are not answered, 4 times\n");
    EXPECT_EQ(answerTo("torn 6 5"), "replies break off after 6 bytes, 5 times\n");
    EXPECT_EQ(answerTo("partition 3 on"), "partition 3 is on\n");
    EXPECT_EQ(answerTo("partition 3 off"), "partition 3 is off\n");
    EXPECT_EQ(answerTo("reset"), "");
}

TEST(ControlOrderTest, ordersAccumulateUntilReset) {
    FaultSwitches switches;
    carryOutOrder("silent 1", switches);
    carryOutOrder("partition 7 off", switches);
    EXPECT_EQ(carryOutOrder("torn 4 1", switches),
              "requests are not answered, 1 times\n"
              "replies break off after 4 bytes, 1 times\n"
              "partition 7 is off\n");
    EXPECT_FALSE(switches.isRunning(7, true));
    EXPECT_EQ(carryOutOrder("status", switches), switches.describe());
    EXPECT_EQ(carryOutOrder("silent 0", switches),
              "replies break off after 4 bytes, 1 times\npartition 7 is off\n");
    EXPECT_EQ(carryOutOrder("reset", switches), "");
    EXPECT_TRUE(switches.isRunning(7, true));
}

TEST(ControlOrderTest, passesNumbersToSwitches) {
    FaultSwitches switches;
    carryOutOrder("refuse 5 1047 1", switches);
    const FaultSwitches::Fault refusal = switches.next(5);
    EXPECT_TRUE(refusal.refused);
    EXPECT_EQ(refusal.errorCode, 1047U);
    EXPECT_FALSE(refusal.sentBytes.has_value());
    carryOutOrder("torn 6 1", switches);
    EXPECT_EQ(switches.next(5).sentBytes, 6U);
    carryOutOrder("silent 1", switches);
    EXPECT_EQ(switches.next(5).sentBytes, 0U);
}

TEST(ControlOrderTest, acceptsAnyBlanksBetweenWords) {
    EXPECT_EQ(answerTo("  partition\t3 \n on "), "partition 3 is on\n");
}

TEST(ControlOrderTest, acceptsNumbersUpToTheirLimits) {
    EXPECT_EQ(answerTo("refuse 4294967295 4294967295 4294967295"),
              "request 4294967295 is refused with code 4294967295, 4294967295 times\n");
    EXPECT_EQ(answerTo("slow 600000 1"), "requests wait 600000 ms, 1 times\n");
    EXPECT_EQ(answerTo("slow 600001 1"), "refused: 600001 is not a number in range");
    EXPECT_EQ(answerTo("silent 4294967296"), "refused: 4294967296 is not a number in range");
    EXPECT_EQ(answerTo("die 600001"), "refused: 600001 is not a number in range");
}

TEST(ControlOrderTest, reasonNamesOffendingWord) {
    EXPECT_EQ(answerTo(""), "refused: the order is too short");
    EXPECT_EQ(answerTo("  "), "refused: the order is too short");
    EXPECT_EQ(answerTo("silent"), "refused: the order is too short");
    EXPECT_EQ(answerTo("silent one"), "refused: one is not a number in range");
    EXPECT_EQ(answerTo("silent 1 2"), "refused: 2 is one word too many");
    EXPECT_EQ(answerTo("partition 3 On"), "refused: On is neither on nor off");
    EXPECT_EQ(answerTo("quiet"), "refused: there is no order quiet");
}

TEST(ControlOrderTest, invalidOrderChangesNothing) {
    FaultSwitches switches;
    switches.refuse(5, 1047, 2);
    switches.delay(10, 3);
    switches.silence(4);
    switches.tear(6, 5);
    switches.setRunning(3, true);
    const std::string before = switches.describe();
    for (const char* order : {"",
                              "refuse",
                              "refuse 5",
                              "refuse 5 1",
                              "refuse 5 1 1 1",
                              "refuse x 1 1",
                              "refuse 5 x 1",
                              "refuse 5 1 x",
                              "refuse 0x5 1 1",
                              "refuse -5 1 1",
                              "refuse 5 +1 1",
                              "refuse 5 1 1.0",
                              "slow",
                              "slow 1",
                              "slow 1 1 1",
                              "slow -1 1",
                              "slow 1 -1",
                              "slow 600001 1",
                              "silent",
                              "silent x",
                              "silent 1 1",
                              "silent -1",
                              "torn",
                              "torn 1",
                              "torn x 1",
                              "torn 1 x",
                              "torn 1 1 1",
                              "partition",
                              "partition 3",
                              "partition x off",
                              "partition 3 out",
                              "partition 3 OFF",
                              "partition 3 off off",
                              "partition off 3",
                              "reset now",
                              "status 1",
                              "die",
                              "die x",
                              "die -1",
                              "die 1 1",
                              "die 600001",
                              "Reset",
                              "RESET",
                              "resett",
                              "--help"}) {
        EXPECT_THROW(carryOutOrder(order, switches), std::invalid_argument) << order;
        EXPECT_EQ(switches.describe(), before) << order;
    }
}

}  // namespace VeskLib::Test
