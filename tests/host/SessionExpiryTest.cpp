#include "platform/host/session/Session.h"

#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace VeskLib::Test {

using Host::Session;
using Host::SESSION_IDLE_SECONDS;
using Host::SESSION_LIFE_SECONDS;

namespace {

// In seconds; far longer than the time between setting a time and checking it.
const std::time_t MARGIN = 30;

std::time_t ageOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return std::time(nullptr) - status.st_mtime;
}

}  // namespace

class SessionExpiryTest : public BoardTest {
protected:
    SessionExpiryTest()
        : session(Host::startSession("operator")), path(sessionFile(session.identifier)) {}

    // Sets the session's creation time to `seconds` ago. This also updates the time of its file.
    void createdAgo(std::time_t seconds) {
        setField(session, "created", std::to_string(std::time(nullptr) - seconds));
    }

    std::time_t lastUse() const {
        struct stat status = {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mtime;
    }

    bool isAlive() const { return isLetIn(session.cookieValue()); }

    Session session;
    std::string path;
};

TEST_F(SessionExpiryTest, staysAliveWithinIdleLimit) {
    setAge(path, SESSION_IDLE_SECONDS - MARGIN);
    EXPECT_TRUE(isAlive());
}

// Pages compute the remaining time of a session from `ends`.
TEST_F(SessionExpiryTest, reportsTimeOfExpiry) {
    const auto endOf = [this] {
        Session found;
        EXPECT_TRUE(Host::findSession(session.cookieValue(), found));
        return found.ends;
    };
    EXPECT_EQ(session.ends, session.created + SESSION_IDLE_SECONDS);
    // A use within a minute of the last one is not recorded and extends nothing.
    setAge(path, 40);
    EXPECT_EQ(endOf(), lastUse() + SESSION_IDLE_SECONDS);
    EXPECT_LE(endOf(), std::time(nullptr) + SESSION_IDLE_SECONDS - 40);
    setAge(path, 300);
    const std::time_t before = std::time(nullptr);
    EXPECT_GE(endOf(), before + SESSION_IDLE_SECONDS);
    EXPECT_EQ(endOf(), lastUse() + SESSION_IDLE_SECONDS);
    // No use extends the session beyond its longest life.
    createdAgo(SESSION_LIFE_SECONDS - MARGIN);
    const std::time_t now = std::time(nullptr);
    EXPECT_LE(endOf(), now + MARGIN);
    EXPECT_GE(endOf(), now + MARGIN - 1);
}

TEST_F(SessionExpiryTest, expiresWhenIdle) {
    setAge(path, SESSION_IDLE_SECONDS + 1);
    EXPECT_FALSE(isAlive());
}

TEST_F(SessionExpiryTest, expiresAtEndOfLifeDespiteUse) {
    createdAgo(SESSION_LIFE_SECONDS - MARGIN);
    EXPECT_TRUE(isAlive());
    createdAgo(SESSION_LIFE_SECONDS + 1);
    EXPECT_FALSE(isAlive());
}

TEST_F(SessionExpiryTest, usesLimitsOfHalfHourAndHalfDay) {
    setAge(path, 29 * 60);
    EXPECT_TRUE(isAlive());
    createdAgo(11 * 60 * 60);
    EXPECT_TRUE(isAlive());
    createdAgo(12 * 60 * 60 + 1);
    EXPECT_FALSE(isAlive());
}

TEST_F(SessionExpiryTest, recordsUse) {
    setAge(path, SESSION_IDLE_SECONDS - MARGIN);
    EXPECT_TRUE(isAlive());
    EXPECT_LT(ageOf(path), MARGIN);
}

TEST_F(SessionExpiryTest, doesNotCountForgedCookieAsUse) {
    setAge(path, SESSION_IDLE_SECONDS - MARGIN);
    EXPECT_FALSE(isLetIn(session.identifier + "-" + std::string(32, 'f')));
    EXPECT_GE(ageOf(path), SESSION_IDLE_SECONDS - MARGIN);
}

TEST_F(SessionExpiryTest, doesNotWriteOnEveryRequest) {
    setAge(path, 10);
    EXPECT_TRUE(isAlive());
    EXPECT_GE(ageOf(path), 10);
}

TEST_F(SessionExpiryTest, rejectsInvalidCreationTime) {
    for (const char* created :
         {"", "x", "-1", "-9223372036854775808", "12", "1e18", "99999999999999999999999999"}) {
        const Session other = Host::startSession("operator");
        setField(other, "created", created);
        EXPECT_FALSE(isLetIn(other.cookieValue())) << created;
    }
}

TEST_F(SessionExpiryTest, removesExpiredSession) {
    setAge(path, SESSION_IDLE_SECONDS + 1);
    EXPECT_FALSE(isAlive());
    EXPECT_FALSE(exists(path));
}

}  // namespace VeskLib::Test
