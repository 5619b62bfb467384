#include "board/backend/LoginThrottle.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace VeskLib::Test {

using Board::LoginAttempt;
using Board::LoginQueue;
using Board::LoginThrottle;
using Board::TokenBuckets;
using State = LoginQueue::State;
using namespace std::chrono_literals;

namespace {

// Fixture for the queue, with a clock that the test sets.
class LoginQueueTest : public testing::Test {
protected:
    using Entry = LoginQueue::Entry;

    Entry& arrive(const std::string& account, const std::string& address,
                  const std::string& device = "") {
        return queue.arrive({account, address, device, "", ""}, now);
    }

    // Makes an attempt that does not wait. Returns true if it was admitted.
    bool tryOnce(const std::string& account, const std::string& address, bool right = false,
                 const std::string& device = "") {
        Entry& entry = arrive(account, address, device);
        const bool admitted = entry.state() == State::ADMITTED;
        queue.leave(entry, right, now);
        return admitted;
    }

    // Makes `attempts` attempts that do not wait. Returns the number admitted.
    int tryOften(int attempts, const std::string& account, const std::string& address) {
        int count = 0;
        for (int i = 0; i < attempts; ++i) {
            count += tryOnce(account, address) ? 1 : 0;
        }
        return count;
    }

    void pass(LoginQueue::Duration time) {
        now += time;
        queue.advance(now);
    }

    LoginQueue queue;
    LoginQueue::Time now = LoginQueue::Time() + 1h;
};

}  // namespace

TEST_F(LoginQueueTest, admitsTwentyFailuresPerAccountInFirstMinuteThenTenPerMinute) {
    for (const char* account : {"admin", "no such user"}) {
        for (const int most : {20, 10, 10, 10}) {
            int count = 0;
            for (int step = 0; step < 240; ++step) {
                pass(250ms);
                count += tryOnce(account, "192.0.2." + std::to_string(step % 100)) ? 1 : 0;
            }
            EXPECT_LE(count, most) << account;
            EXPECT_GE(count, most - 1) << account;
        }
        now += 1h;
    }
}

TEST_F(LoginQueueTest, waitingDoesNotRaiseLimitOfAccount) {
    int count = 0;
    std::vector<Entry*> entries;
    for (int step = 0; step < 240; ++step) {
        pass(250ms);
        entries.push_back(&arrive("admin", "192.0.2." + std::to_string(step % 100)));
        std::erase_if(entries, [&](Entry* entry) {
            const State state = entry->state();
            if (state != State::WAITING) {
                count += state == State::ADMITTED ? 1 : 0;
                queue.leave(*entry, false, now);
            }
            return state != State::WAITING;
        });
        EXPECT_LE(queue.waiting(), LoginQueue::MOST_WAITING);
    }
    EXPECT_LE(count, 20);
    EXPECT_GE(count, 19);
}

TEST_F(LoginQueueTest, oneAddressCannotUseUpAnAccount) {
    for (int step = 0; step < 4000; ++step) {
        tryOnce("admin", "attacker");
        pass(250ms);
        if (step % 100 == 99) {
            EXPECT_TRUE(tryOnce("admin", "user", true)) << step;
        }
    }
}

TEST_F(LoginQueueTest, exhaustedAccountDoesNotDelayOthers) {
    tryOften(20, "admin", "a");
    EXPECT_TRUE(tryOnce("viewer", "b"));
}

TEST_F(LoginQueueTest, successClearsFailuresOfItsAccountAndAddressOnly) {
    EXPECT_EQ(tryOften(9, "admin", "a"), 5);
    EXPECT_TRUE(tryOnce("viewer", "a", true));
    EXPECT_FALSE(tryOnce("admin", "a"));  // another account
    EXPECT_TRUE(tryOnce("admin", "b", true));
    EXPECT_FALSE(tryOnce("admin", "a"));  // another address
    EXPECT_EQ(tryOften(4, "admin", "b"), 4);
    EXPECT_TRUE(tryOnce("admin", "b", true));
    EXPECT_EQ(tryOften(9, "admin", "b"), 1);  // the rest of the account's attempts
}

TEST_F(LoginQueueTest, rightPasswordsDoNotUseUpAttempts) {
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(tryOnce("admin", "a", true)) << i;
    }
    EXPECT_EQ(tryOften(9, "admin", "a"), 5);
}

TEST_F(LoginQueueTest, attemptsInProgressCountAsFailed) {
    Entry& first = arrive("admin", "a");
    EXPECT_EQ(tryOften(9, "admin", "a"), 4);
    queue.leave(first, true, now);
    EXPECT_TRUE(tryOnce("admin", "a"));
}

TEST_F(LoginQueueTest, admitsWaitingAttemptAfterAddressInterval) {
    tryOften(5, "admin", "a");
    Entry& entry = arrive("admin", "a");
    EXPECT_EQ(queue.nextDecision(), now + LoginQueue::ADDRESS_INTERVAL);
    pass(LoginQueue::ADDRESS_INTERVAL - 1ms);
    EXPECT_EQ(entry.state(), State::WAITING);
    pass(1ms);
    EXPECT_EQ(entry.state(), State::ADMITTED);
}

TEST_F(LoginQueueTest, admitsNewestAttemptOfAddressFirst) {
    tryOften(5, "admin", "a");
    Entry& older = arrive("admin", "a");
    Entry& newer = arrive("admin", "a");
    pass(LoginQueue::ADDRESS_INTERVAL);
    EXPECT_EQ(older.state(), State::WAITING);
    EXPECT_EQ(newer.state(), State::ADMITTED);
}

TEST_F(LoginQueueTest, admitsAddressWithFewerFailuresFirst) {
    for (const char* address : {"a", "b", "c", "d"}) {
        tryOften(4, "admin", address);
    }
    Entry& fresh = arrive("admin", "e");
    Entry& guesser = arrive("admin", "a");
    EXPECT_EQ(fresh.state(), State::WAITING);
    pass(LoginQueue::ACCOUNT_INTERVAL);
    EXPECT_EQ(fresh.state(), State::ADMITTED);
    EXPECT_EQ(guesser.state(), State::WAITING);
}

TEST_F(LoginQueueTest, admitsUntriedPasswordBeforeFailedOne) {
    for (int i = 0; i < 5; ++i) {
        queue.leave(queue.arrive({"admin", "a", "", "", "outdated"}, now), false, now);
    }
    Entry& first = queue.arrive({"admin", "a", "", "", "outdated"}, now);
    Entry& other = queue.arrive({"admin", "a", "", "", "right"}, now);
    Entry& last = queue.arrive({"admin", "a", "", "", "outdated"}, now);
    pass(LoginQueue::ADDRESS_INTERVAL);
    EXPECT_EQ(first.state(), State::WAITING);
    EXPECT_EQ(other.state(), State::ADMITTED);
    EXPECT_EQ(last.state(), State::WAITING);
    EXPECT_TRUE(queue.arrive({"viewer", "a", "", "", "outdated"}, now).state() == State::ADMITTED);
}

TEST_F(LoginQueueTest, admitsBrowserWithoutFailuresFirst) {
    for (int i = 0; i < 5; ++i) {
        queue.leave(queue.arrive({"admin", "a", "", "guesser", std::to_string(i)}, now), false,
                    now);
    }
    Entry& fresh = queue.arrive({"admin", "a", "", "browser", "x"}, now);
    Entry& failed = queue.arrive({"admin", "a", "", "guesser", "y"}, now);
    Entry& none = queue.arrive({"admin", "a", "", "", "z"}, now);
    pass(LoginQueue::ADDRESS_INTERVAL);
    EXPECT_EQ(fresh.state(), State::ADMITTED);
    EXPECT_EQ(failed.state(), State::WAITING);
    EXPECT_EQ(none.state(), State::WAITING);
}

TEST_F(LoginQueueTest, refusesAttemptAfterLongestWait) {
    tryOften(5, "admin", "a");
    Entry& older = arrive("admin", "a");
    pass(LoginQueue::ADDRESS_INTERVAL - 1s);
    Entry& newer = arrive("admin", "a");
    pass(1s);
    EXPECT_EQ(newer.state(), State::ADMITTED);
    EXPECT_EQ(older.state(), State::WAITING);
    pass(LoginQueue::LONGEST_WAIT - LoginQueue::ADDRESS_INTERVAL - 1ms);
    EXPECT_EQ(older.state(), State::WAITING);
    EXPECT_EQ(queue.nextDecision(), now + 1ms);
    pass(1ms);
    EXPECT_EQ(older.state(), State::REFUSED);
}

TEST_F(LoginQueueTest, refusesOldestAttemptOfFullAddress) {
    tryOften(5, "admin", "a");
    Entry& oldest = arrive("admin", "a");
    Entry& second = arrive("admin", "a");
    for (std::size_t i = 2; i < LoginQueue::MOST_OF_ADDRESS; ++i) {
        arrive("admin", "a");
    }
    EXPECT_EQ(oldest.state(), State::WAITING);
    arrive("admin", "a");
    EXPECT_EQ(oldest.state(), State::REFUSED);
    EXPECT_EQ(second.state(), State::WAITING);
}

TEST_F(LoginQueueTest, fullQueueRefusesOldestOfBusiestAddress) {
    for (const char* address : {"a", "b", "c"}) {
        tryOften(5, "admin", address);
    }
    Entry& single = arrive("admin", "single");
    Entry& oldestOfMany = arrive("admin", "a");
    for (std::size_t i = 2; i < LoginQueue::MOST_WAITING; ++i) {
        arrive("admin", i < 24 ? "a" : i % 2 == 0 ? "b" : "c");
    }
    EXPECT_EQ(queue.waiting(), LoginQueue::MOST_WAITING);
    EXPECT_EQ(oldestOfMany.state(), State::WAITING);
    Entry& another = arrive("admin", "another");
    EXPECT_EQ(queue.waiting(), LoginQueue::MOST_WAITING);
    EXPECT_EQ(single.state(), State::WAITING);
    EXPECT_EQ(another.state(), State::WAITING);
    EXPECT_EQ(oldestOfMany.state(), State::REFUSED);
}

TEST_F(LoginQueueTest, countsKnownBrowserSeparately) {
    tryOften(20, "admin", "a");
    EXPECT_TRUE(tryOnce("admin", "a", true, "device"));
    for (int i = 0; i < LoginQueue::DEVICE_ATTEMPTS; ++i) {
        EXPECT_TRUE(tryOnce("admin", "b", false, "device")) << i;
    }
    EXPECT_FALSE(tryOnce("admin", "b", false, "device"));
    EXPECT_TRUE(tryOnce("admin", "a", true, "another device"));
    EXPECT_EQ(tryOften(9, "admin", "b"), 5);  // the address still has all of its attempts
    pass(LoginQueue::DEVICE_INTERVAL);
    EXPECT_TRUE(tryOnce("admin", "b", true, "device"));
    EXPECT_TRUE(tryOnce("admin", "b", false, "device"));
}

TEST_F(LoginQueueTest, doesNotRefuseKnownBrowserToMakeRoom) {
    for (int i = 0; i < LoginQueue::DEVICE_ATTEMPTS; ++i) {
        tryOnce("admin", "a", false, "device");
    }
    Entry& entry = arrive("admin", "a", "device");
    for (std::size_t i = 0; i < 2 * LoginQueue::MOST_WAITING; ++i) {
        arrive("admin", "192.0.2." + std::to_string(i));
    }
    pass(LoginQueue::DEVICE_INTERVAL);
    EXPECT_NE(entry.state(), State::REFUSED);
}

TEST_F(LoginQueueTest, delaysAddressThatTriesManyNames) {
    for (int i = 0; i < LoginQueue::ADDRESS_FAILURES; ++i) {
        EXPECT_TRUE(tryOnce("name" + std::to_string(i), "a"));
    }
    Entry& first = arrive("x", "a");
    Entry& second = arrive("viewer", "a");
    EXPECT_TRUE(tryOnce("viewer", "b"));
    EXPECT_TRUE(tryOnce("viewer", "a", true, "device"));
    pass(LoginQueue::FAILURE_DELAY - 1ms);
    EXPECT_EQ(first.state(), State::WAITING);
    pass(1ms);
    EXPECT_EQ(first.state(), State::ADMITTED);
    EXPECT_EQ(second.state(), State::ADMITTED);  // at the same time
    queue.leave(first, false, now);
    queue.leave(second, true, now);
    pass(2 * LoginQueue::FAILURE_MEMORY);
    EXPECT_TRUE(tryOnce("y", "a"));
}

TEST_F(LoginQueueTest, limitsHashesComputedAtOnce) {
    std::vector<Entry*> working;
    for (std::size_t i = 0; i < LoginQueue::MOST_AT_WORK; ++i) {
        working.push_back(&arrive("name" + std::to_string(i), "a"));
        EXPECT_EQ(working.back()->state(), State::ADMITTED);
    }
    Entry& next = arrive("admin", "b");
    EXPECT_EQ(next.state(), State::WAITING);
    EXPECT_EQ(queue.nextDecision(), now + LoginQueue::LONGEST_WAIT);
    queue.leave(*working.front(), false, now);
    EXPECT_EQ(next.state(), State::ADMITTED);
}

// One host can use any address of its /64 network.
TEST_F(LoginQueueTest, countsAddressesOfOneNetworkTogether) {
    int count = 0;
    for (int i = 1; i <= 9; ++i) {
        count += tryOnce("admin", "2001:db8:0:1::" + std::to_string(i)) ? 1 : 0;
    }
    EXPECT_EQ(count, 5);
    EXPECT_TRUE(tryOnce("admin", "2001:db8:0:2::1"));
    EXPECT_TRUE(tryOnce("viewer", "::ffff:192.0.2.1"));
}

// Name and address are joined to one key; "a" + "bc" must not equal "ab" + "c".
TEST_F(LoginQueueTest, keepsNameAndAddressApartInKeys) {
    EXPECT_EQ(tryOften(9, "a", "bc"), 5);
    EXPECT_EQ(tryOften(9, "ab", "c"), 5);
}

TEST_F(LoginQueueTest, endRefusesWaitingAttempts) {
    tryOften(5, "admin", "a");
    Entry& waiting = arrive("admin", "a");
    queue.end();
    EXPECT_EQ(waiting.state(), State::REFUSED);
    EXPECT_EQ(arrive("admin", "a").state(), State::REFUSED);
    EXPECT_EQ(arrive("viewer", "b").state(), State::ADMITTED);
}

TEST(TokenBuckets, limitNumberOfBuckets) {
    TokenBuckets buckets(1, 1min);
    const TokenBuckets::Time now = TokenBuckets::Time() + 1h;
    buckets.take("worst", now);
    buckets.take("worst", now);
    for (std::size_t i = 0; i < 2 * TokenBuckets::MOST_BUCKETS; ++i) {
        buckets.take(std::to_string(i), now);
        EXPECT_LE(buckets.size(), TokenBuckets::MOST_BUCKETS);
    }
    EXPECT_GT(buckets.nextToken("worst"), now + 1min);
}

TEST(TokenBuckets, dropFullBucketsFirst) {
    TokenBuckets buckets(1, 1min);
    const TokenBuckets::Time now = TokenBuckets::Time() + 1h;
    for (std::size_t i = 0; i < TokenBuckets::MOST_BUCKETS; ++i) {
        buckets.take(std::to_string(i), now);
    }
    buckets.take("another", now + 2min);
    EXPECT_EQ(buckets.size(), 1U);
}

TEST(LoginThrottle, guessOfDistinguishesPasswordsInFourBytes) {
    EXPECT_EQ(LoginThrottle::guessOf("secret"), LoginThrottle::guessOf("secret"));
    EXPECT_EQ(LoginThrottle::guessOf("secret").size(), 4U);
    std::set<std::string> guesses;
    for (int i = 0; i < 100; ++i) {
        guesses.insert(LoginThrottle::guessOf(std::to_string(i)));
    }
    EXPECT_GT(guesses.size(), 90U);
}

TEST(LoginThrottle, waitsUntilAnotherAttemptLeaves) {
    LoginThrottle throttle;
    std::vector<std::unique_ptr<LoginThrottle::Pass>> working;
    for (std::size_t i = 0; i < LoginQueue::MOST_AT_WORK; ++i) {
        working.push_back(std::make_unique<LoginThrottle::Pass>(throttle, LoginAttempt{"a", "b"}));
        EXPECT_TRUE(working.back()->isAdmitted());
    }
    std::thread leaving([&working] { working.clear(); });
    LoginThrottle::Pass pass(throttle, {"viewer", "c"});
    leaving.join();
    EXPECT_TRUE(pass.isAdmitted());
}

TEST(LoginThrottle, passWithoutSuccessCountsAsFailed) {
    LoginThrottle throttle;
    for (int i = 0; i < 10 * LoginQueue::ACCOUNT_ATTEMPTS; ++i) {
        LoginThrottle::Pass pass(throttle, {"admin", "a"});
        EXPECT_TRUE(pass.isAdmitted());
        pass.succeeded();
    }
    for (int i = 0; i < LoginQueue::ADDRESS_ATTEMPTS; ++i) {
        EXPECT_TRUE(LoginThrottle::Pass(throttle, {"admin", "a"}).isAdmitted());
    }
    std::thread ending([&throttle] { throttle.end(); });
    EXPECT_FALSE(LoginThrottle::Pass(throttle, {"admin", "a"}).isAdmitted());
    ending.join();
}

}  // namespace VeskLib::Test
