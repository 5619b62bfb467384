// Guesses passwords against the daemon as an attacker would, while legitimate users log in.

#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "tests/backend/support/BackendProcess.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/requests.h"
#include "tests/support/BoardTest.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace VeskLib::Test {

using namespace Host;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

const int REFUSED = BACKEND_LOGIN_REFUSED;
const int TOO_SOON = BACKEND_LOGIN_TOO_SOON;
const std::string ATTACKER = "192.0.2.66";

class LoginAttackTest : public RootTest {
protected:
    void SetUp() override { ASSERT_TRUE(backend.waitUntilReady()); }

    static int logIn(const std::string& user, const std::string& password,
                     const std::string& address) {
        ReplyFrame reply;
        const Bytes payload = encode(LoginRequest{user, password, address});
        return Channel(LONG).exchange({RequestKind::LOGIN, 0, "", payload}, reply);
    }

    // Starts a guess in a thread of its own, without waiting for the answer.
    void guess(const std::string& user, const std::string& address, std::string password = "") {
        if (password.empty()) {
            password = "wrong" + std::to_string(guesses.size());
        }
        guesses.emplace_back([this, user, password, address] {
            const Clock::time_point begin = Clock::now();
            const int code = logIn(user, password, address);
            refusedEarly += code == TOO_SOON && Clock::now() - begin < 8s ? 1 : 0;
            EXPECT_TRUE(code == REFUSED || code == TOO_SOON) << code;
            ++(code == REFUSED ? lookedAt : notLookedAt);
        });
    }

    void waitForGuesses() {
        for (std::thread& each : guesses) {
            each.join();
        }
        guesses.clear();
    }

    // Returns the most tokens that a bucket can have given out since the start.
    int given(int capacity, std::chrono::milliseconds interval) const {
        return capacity + static_cast<int>((Clock::now() - start) / interval) + 1;
    }

    BackendProcess backend{boardFile(""), DEMO_BOARD};
    const Clock::time_point start = Clock::now();
    std::atomic<int> lookedAt = 0;
    std::atomic<int> notLookedAt = 0;
    std::atomic<int> refusedEarly = 0;  // to make room
    std::vector<std::thread> guesses;
};

}  // namespace

TEST_F(LoginAttackTest, countsGuessesFromManyAddressesPerAccount) {
    for (const char* account : {"admin", "nobody"}) {
        for (int address = 0; address < 20; ++address) {
            guess(account, "192.0.2." + std::to_string(address));
        }
    }
    waitForGuesses();
    EXPECT_GE(lookedAt, 2 * 10);
    EXPECT_LE(lookedAt, 2 * given(10, 6s));
}

TEST_F(LoginAttackTest, loginToAnotherAccountDoesNotResetGuesses) {
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 4; ++i) {
            guess("admin", ATTACKER);
        }
        waitForGuesses();
        EXPECT_EQ(logIn("viewer", "viewer", ATTACKER), 0);
    }
    EXPECT_LE(lookedAt, given(5, 7500ms));
}

TEST_F(LoginAttackTest, othersLogInWhileOneAddressGuesses) {
    for (int i = 0; i < 12; ++i) {
        guess("admin", ATTACKER);
        std::this_thread::sleep_for(250ms);
    }
    EXPECT_EQ(logIn("viewer", "viewer", ATTACKER), 0);
    EXPECT_EQ(logIn("admin", "admin", "192.0.2.1"), 0);
    waitForGuesses();
}

TEST_F(LoginAttackTest, rightPasswordFromAttackingAddressIsAccepted) {
    for (int i = 0; i < 8; ++i) {
        guess("admin", ATTACKER);
    }
    std::this_thread::sleep_for(1s);
    EXPECT_EQ(logIn("admin", "admin", ATTACKER), 0);
    waitForGuesses();
}

// A program with an outdated password retries it again and again.
TEST_F(LoginAttackTest, rightPasswordOvertakesRepeatedWrongOne) {
    for (int i = 0; i < 34; ++i) {
        guess("admin", ATTACKER, "outdated");
        if (i == 8) {
            guesses.emplace_back([] { EXPECT_EQ(logIn("admin", "admin", ATTACKER), 0); });
        }
        std::this_thread::sleep_for(250ms);
    }
    waitForGuesses();
}

TEST_F(LoginAttackTest, waitingLoginsDoNotBlockOtherRequests) {
    for (int i = 0; i < 200; ++i) {
        guess("admin", "192.0.2." + std::to_string(i % 20));
    }
    std::this_thread::sleep_for(1s);
    for (int i = 0; i < 20; ++i) {
        ReplyFrame reply;
        Channel channel(LONG);
        EXPECT_EQ(channel.exchange({RequestKind::GET, 0x0201002F, SESSION, {}}, reply), 0);
    }
    waitForGuesses();
    EXPECT_GT(refusedEarly, 0);
}

TEST_F(LoginAttackTest, waitingLoginsDoNotDelayShutdown) {
    for (int i = 0; i < 8; ++i) {
        guess("admin", ATTACKER);
    }
    std::this_thread::sleep_for(1s);
    EXPECT_EQ(backend.stop(), 0);
    waitForGuesses();  // each is still answered
}

}  // namespace VeskLib::Test
