#include "platform/host/web/requestSession.h"

#include "platform/host/web/errorPage.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/sessions.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <iostream>

namespace VeskLib::Test {

using Host::Session;
using testing::IsEmpty;

namespace {

const std::string FORGED = "0123456789abcdef-" + std::string(32, '0');

// Runs each request in a child process, because a process reads the board's properties once.
class RequestSessionTest : public BoardTest {
protected:
    static std::string run(const std::function<void()>& work, const Environment& environment = {}) {
        const ChildResult result = runInChild(
            [&work] {
                work();
                return 0;
            },
            {.environment = environment, .input = {}});
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
        return result.output;
    }

    // Returns the user of a cookie's session, followed by 1 or 0 for the right to use function 105
    // and function 106.
    static std::string whoIs(const std::string& cookieValue) {
        return run([&cookieValue] {
            const Host::RequestSession* const found = Host::findRequestSession(cookieValue);
            if (found != Host::requestSession()) {
                std::cout << "not kept: ";
            }
            if (found == nullptr) {
                std::cout << "nobody";
                return;
            }
            std::cout << found->session.user << found->mayUse(105) << found->mayUse(106);
        });
    }

    static std::string cookieOf(const std::string& header, bool secure = false) {
        Environment environment = {{"HTTP_COOKIE", header}};
        if (secure) {
            environment["HTTPS"] = "on";
        }
        return run([] { std::cout << Host::requestCookie(); }, environment);
    }

    static void describeNobody() {
        writeText(boardFile("/var/run/board_properties"), "max_partitions=8\n");
    }

    static void describeOnly(const std::string& name) {
        describeNobody();
        publishUser(name, false, ",105,");
    }

    static bool exists(const Session& session) {
        return VeskLib::Test::exists(sessionFile(session.identifier));
    }

    static std::string lastAuditLine() {
        return linesOf(readText(boardFile("/var/log/audit.log"))).back();
    }
};

}  // namespace

TEST_F(RequestSessionTest, usesCurrentRights) {
    const Session session = startSession("user", false, ",105,");
    EXPECT_EQ(whoIs(session.cookieValue()), "user10");
    publishUser("user", false, ",106,");
    EXPECT_EQ(whoIs(session.cookieValue()), "user01");
    publishUser("user", true, "");
    EXPECT_EQ(whoIs(session.cookieValue()), "user11");
    EXPECT_EQ(whoIs(FORGED), "nobody");
}

TEST_F(RequestSessionTest, endsSessionOfRemovedUser) {
    const Session session = startSession("user", false, ",105,");
    writeText(backupFile(session.identifier), "backup");
    describeOnly("another");
    EXPECT_EQ(whoIs(session.cookieValue()), "nobody");
    EXPECT_FALSE(exists(session));
    EXPECT_FALSE(VeskLib::Test::exists(backupFile(session.identifier)));
    const nlohmann::json line = nlohmann::json::parse(lastAuditLine());
    EXPECT_EQ(line["event"], "session_ended");
    EXPECT_EQ(line["reason"], "user");
    EXPECT_EQ(line["user"], "user");
    EXPECT_EQ(line["session"], session.identifier);
    // Describing the user again does not restore the session.
    publishUser("user", false, ",105,");
    EXPECT_EQ(whoIs(session.cookieValue()), "nobody");
}

TEST_F(RequestSessionTest, rejectsButKeepsSessionWithoutDescription) {
    const Session session = startSession("user", false, ",105,");
    describeNobody();
    EXPECT_EQ(whoIs(session.cookieValue()), "nobody");
    EXPECT_TRUE(exists(session));
}

TEST_F(RequestSessionTest, prefersCookieOfLiveSession) {
    const std::string good = startSession("user", false, "").cookieValue();
    for (const std::string& other : {std::string(), std::string("x"), FORGED}) {
        EXPECT_EQ(cookieOf("session=" + other + "; session=" + good), good) << other;
        EXPECT_EQ(cookieOf("session=" + good + "; session=" + other), good) << other;
    }
    EXPECT_EQ(cookieOf("session=x; session=y"), "x");
    EXPECT_EQ(cookieOf("session=" + FORGED), FORGED);
    EXPECT_EQ(cookieOf("language=ja"), "");
}

TEST_F(RequestSessionTest, acceptsOnlyHostPrefixedCookieOverHTTPS) {
    EXPECT_EQ(cookieOf("session=plain; __Host-session=guarded", true), "guarded");
    EXPECT_EQ(cookieOf("session=plain", true), "");
    EXPECT_EQ(cookieOf("session=plain; __Host-session=guarded"), "plain");
}

TEST_F(RequestSessionTest, rejectsSessionEndedMeanwhile) {
    const Session session = startSession("user", false, ",105,");
    const std::string output = run([&session] {
        Host::requireLivingSession();  // accepts a request without a session
        Host::findRequestSession(session.cookieValue());
        Host::requireLivingSession();
        std::cout << "alive, ";
        Host::endSession(session.identifier);
        try {
            Host::requireLivingSession();
        } catch (const Host::ErrorPage& page) {
            std::cout << page.status << page.offerLogin;
        }
    });
    EXPECT_EQ(output, "alive, 4031");
}

TEST_F(RequestSessionTest, eventNamesUserSessionAndAddress) {
    const Session session = startSession("user", false, ",105,");
    const std::string output = run(
        [&session] {
            const Host::AuditEvent before = Host::makeAuditEvent("x");
            Host::findRequestSession(session.cookieValue());
            const Host::AuditEvent event = Host::makeAuditEvent("upload");
            std::cout << before.user << before.session << event.event << ' ' << event.user << ' '
                      << event.session << ' ' << event.address << ' '
                      << (event.request == before.request && !event.request.empty());
        },
        {{"REMOTE_ADDR", "192.0.2.1"}});
    EXPECT_EQ(output, "upload user " + session.identifier + " 192.0.2.1 1");
}

}  // namespace VeskLib::Test
