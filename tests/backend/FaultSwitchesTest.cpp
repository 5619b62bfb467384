#include "board/backend/FaultSwitches.h"

#include "tests/backend/support/requests.h"
#include "tests/support/happensInTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace VeskLib::Test {

using Board::FaultSwitches;

namespace {

const std::uint32_t REQUEST = 0x020100A4;

// Describes the fault of the next request: "refused 1047", "5 bytes", both, or "".
std::string nextFault(FaultSwitches& switches, std::uint32_t request = REQUEST) {
    const FaultSwitches::Fault fault = switches.next(request);
    std::string text = fault.refused ? "refused " + std::to_string(fault.errorCode) : "";
    if (fault.sentBytes) {
        text += (text.empty() ? "" : ", ") + std::to_string(*fault.sentBytes) + " bytes";
    }
    return text;
}

std::chrono::milliseconds timeOf(FaultSwitches& switches) {
    const auto start = std::chrono::steady_clock::now();
    switches.next(REQUEST);
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start);
}

}  // namespace

TEST(FaultSwitchesTest, everythingIsOffInitially) {
    FaultSwitches switches;
    EXPECT_EQ(switches.describe(), "");
    EXPECT_EQ(nextFault(switches), "");
    EXPECT_TRUE(switches.isRunning(0, true));
    EXPECT_FALSE(switches.isRunning(0, false));
}

TEST(FaultSwitchesTest, refusesNextRequestsOfNumber) {
    FaultSwitches switches;
    switches.refuse(REQUEST, 1047, 2);
    EXPECT_EQ(nextFault(switches, REQUEST + 1), "");
    EXPECT_EQ(nextFault(switches), "refused 1047");
    EXPECT_EQ(nextFault(switches, 0), "");
    EXPECT_EQ(nextFault(switches), "refused 1047");
    EXPECT_EQ(nextFault(switches), "");
}

TEST(FaultSwitchesTest, lastRefusalOfEachNumberCounts) {
    FaultSwitches switches;
    switches.refuse(1, 1001, 5);
    switches.refuse(2, 1002, 1);
    switches.refuse(1, 1003, 1);
    EXPECT_EQ(nextFault(switches, 1), "refused 1003");
    EXPECT_EQ(nextFault(switches, 1), "");
    EXPECT_EQ(nextFault(switches, 2), "refused 1002");
    switches.refuse(2, 1002, 3);
    switches.refuse(2, 1002, 0);
    EXPECT_EQ(nextFault(switches, 2), "");
}

TEST(FaultSwitchesTest, silencesNextRequests) {
    FaultSwitches switches;
    switches.silence(2);
    EXPECT_EQ(nextFault(switches, 1), "0 bytes");
    EXPECT_EQ(nextFault(switches, 2), "0 bytes");
    EXPECT_EQ(nextFault(switches, 3), "");
}

TEST(FaultSwitchesTest, tearsNextReplies) {
    FaultSwitches switches;
    switches.tear(6, 2);
    EXPECT_EQ(nextFault(switches, 1), "6 bytes");
    EXPECT_EQ(nextFault(switches, 2), "6 bytes");
    EXPECT_EQ(nextFault(switches, 3), "");
}

TEST(FaultSwitchesTest, combinesFaultsOnOneRequest) {
    FaultSwitches switches;
    switches.refuse(REQUEST, 1047, 1);
    switches.tear(6, 1);
    switches.silence(1);
    // Silence takes precedence: a reply that is not sent cannot be cut.
    EXPECT_EQ(nextFault(switches), "refused 1047, 0 bytes");
    EXPECT_EQ(nextFault(switches), "6 bytes");
    EXPECT_EQ(nextFault(switches), "");
}

TEST(FaultSwitchesTest, delaysNextRequests) {
    FaultSwitches switches;
    switches.delay(60, 2);
    EXPECT_GE(timeOf(switches).count(), 60);
    EXPECT_GE(timeOf(switches).count(), 60);
    EXPECT_EQ(switches.describe(), "");
}

TEST(FaultSwitchesTest, delayedRequestDoesNotBlockOthers) {
    FaultSwitches switches;
    switches.delay(LONG, 1);
    std::thread waiting([&switches] { switches.next(REQUEST); });
    EXPECT_TRUE(happensInTime([&switches] { return switches.describe().empty(); }));
    EXPECT_EQ(nextFault(switches), "");
    switches.refuse(REQUEST, 1047, 1);
    EXPECT_EQ(nextFault(switches), "refused 1047");
    switches.end();
    waiting.join();
}

TEST(FaultSwitchesTest, endInterruptsDelays) {
    FaultSwitches switches;
    switches.delay(LONG, 10);
    std::vector<std::thread> waiting;
    for (int i = 0; i < 3; ++i) {
        waiting.emplace_back([&switches] { switches.next(REQUEST); });
    }
    switches.end();
    for (std::thread& thread : waiting) {
        thread.join();
    }
    EXPECT_LT(timeOf(switches).count(), LONG);
}

TEST(FaultSwitchesTest, setRunningOverridesDescription) {
    FaultSwitches switches;
    switches.setRunning(3, true);
    switches.setRunning(4, false);
    EXPECT_TRUE(switches.isRunning(3, false));
    EXPECT_FALSE(switches.isRunning(4, true));
    EXPECT_TRUE(switches.isRunning(5, true));
    switches.setRunning(3, false);
    EXPECT_FALSE(switches.isRunning(3, true));
}

TEST(FaultSwitchesTest, resetSwitchesEverythingOff) {
    FaultSwitches switches;
    switches.refuse(REQUEST, 1047, 5);
    switches.delay(LONG, 5);
    switches.silence(5);
    switches.tear(6, 5);
    switches.setRunning(3, true);
    switches.reset();
    EXPECT_EQ(switches.describe(), "");
    EXPECT_EQ(nextFault(switches), "");
    EXPECT_FALSE(switches.isRunning(3, false));
}

TEST(FaultSwitchesTest, describesRemainingFaults) {
    FaultSwitches switches;
    switches.refuse(33620132, 1047, 2);
    switches.refuse(5, 1, 1);
    switches.delay(1500, 3);
    switches.silence(4);
    switches.tear(6, 5);
    switches.setRunning(7, false);
    switches.setRunning(3, true);
    EXPECT_EQ(switches.describe(),
              "request 5 is refused with code 1, 1 times\n"
              "request 33620132 is refused with code 1047, 2 times\n"
              "requests wait 1500 ms, 3 times\n"
              "requests are not answered, 4 times\n"
              "replies break off after 6 bytes, 5 times\n"
              "partition 3 is on\n"
              "partition 7 is off\n");
    switches.end();
    switches.next(5);
    EXPECT_EQ(switches.describe(),
              "request 33620132 is refused with code 1047, 2 times\n"
              "requests wait 1500 ms, 2 times\n"
              "requests are not answered, 3 times\n"
              "replies break off after 6 bytes, 5 times\n"
              "partition 3 is on\n"
              "partition 7 is off\n");
}

}  // namespace VeskLib::Test
