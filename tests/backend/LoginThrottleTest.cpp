#include "board/backend/LoginThrottle.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Board::LoginThrottle;
using namespace std::chrono_literals;

namespace {

class LoginThrottleTest : public testing::Test {
protected:
    bool tryFrom(const std::string& origin) { return throttle.mayTry(origin, now); }

    // Uses up what may fail freely.
    void failFreely(const std::string& origin) {
        for (unsigned int i = 0; i < LoginThrottle::FREE_ATTEMPTS; ++i) {
            EXPECT_TRUE(tryFrom(origin)) << i;
        }
    }

    LoginThrottle throttle;
    LoginThrottle::Time now = LoginThrottle::Time() + 1h;
};

}  // namespace

TEST_F(LoginThrottleTest, someAttemptsMayFailFreely) {
    failFreely("a");
    EXPECT_FALSE(tryFrom("a"));
}

TEST_F(LoginThrottleTest, theWaitDoublesUpToItsLimit) {
    failFreely("a");
    for (const std::chrono::seconds wait : {1s, 2s, 4s, 8s, 16s, 32s, 60s, 60s, 60s}) {
        now += wait - 1ms;
        EXPECT_FALSE(tryFrom("a")) << wait.count();
        now += 1ms;
        EXPECT_TRUE(tryFrom("a")) << wait.count();
    }
}

TEST_F(LoginThrottleTest, whoTriesTooSoonWaitsNoLonger) {
    failFreely("a");
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(tryFrom("a"));
    }
    now += 1s;
    EXPECT_TRUE(tryFrom("a"));
}

TEST_F(LoginThrottleTest, othersDoNotWait) {
    failFreely("a");
    EXPECT_FALSE(tryFrom("a"));
    failFreely("b");
}

TEST_F(LoginThrottleTest, aSuccessForgetsTheFailures) {
    failFreely("a");
    now += 1s;
    EXPECT_TRUE(tryFrom("a"));
    throttle.succeeded("a");
    failFreely("a");
}

TEST_F(LoginThrottleTest, theQuietestOriginIsForgottenWhenThereAreTooMany) {
    failFreely("quietest");
    now += 1ms;
    failFreely("quiet");
    for (std::size_t i = 0; i + 1 < LoginThrottle::MOST_ORIGINS; ++i) {
        now += 1us;
        EXPECT_TRUE(tryFrom(std::to_string(i)));
    }
    EXPECT_FALSE(tryFrom("quiet"));
    EXPECT_TRUE(tryFrom("quietest"));
}

}  // namespace VeskLib::Test
