#include "tests/support/files.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

namespace {

const int LOGOUT_NEEDS_BUTTON = 9211;

class LogoutTest : public WebTest {
protected:
    static CGIResponse run(const WebRequest& request) {
        return runWebProgram(LOGOUT_PROGRAM, request);
    }

    static bool isAlive(const Host::Session& session) {
        Host::Session found;
        return Host::findSession(session.cookieValue(), found);
    }

    // Expects a redirection to the login page that deletes the cookie and the browser's data.
    static void expectLoggedOut(const CGIResponse& response) {
        expectRedirection(response, "/login.cgi");
        EXPECT_EQ(response.header("Set-Cookie"),
                  "session=; Path=/; Max-Age=0; HttpOnly; SameSite=Strict");
        EXPECT_EQ(response.header("Clear-Site-Data"), "\"cache\", \"storage\"");
    }

    const Host::Session session = startSession("admin", false, ",105,106,");
};

TEST_F(LogoutTest, postEndsOnlyItsSessionAndFiles) {
    const Host::Session other = startSession("viewer", false, "");
    for (const char* file : {"/var/tmp/efi_backup", "/var/tmp/restored_eficonf"}) {
        writeText(boardFile(file + session.identifier), "bytes");
        writeText(boardFile(file + other.identifier), "bytes");
    }
    expectLoggedOut(run({.method = "POST", .cookie = cookieOf(session)}));
    EXPECT_FALSE(isAlive(session));
    EXPECT_TRUE(isAlive(other));
    for (const char* file : {"/var/tmp/efi_backup", "/var/tmp/restored_eficonf"}) {
        EXPECT_FALSE(exists(boardFile(file + session.identifier))) << file;
        EXPECT_TRUE(exists(boardFile(file + other.identifier))) << file;
    }
}

TEST_F(LogoutTest, postWithoutSessionClearsTheCookie) {
    for (const char* cookie : {"", "session=", "session=../../etc/passwd", "session=x; other=y"}) {
        expectLoggedOut(run({.method = "POST", .cookie = cookie}));
    }
    EXPECT_TRUE(isAlive(session));
}

TEST_F(LogoutTest, forgedTokenEndsNoSession) {
    const std::string forged = session.identifier + "-00000000000000000000000000000000";
    expectLoggedOut(run({.method = "POST", .cookie = "session=" + forged}));
    EXPECT_TRUE(isAlive(session));
}

TEST_F(LogoutTest, getEndsNoSession) {
    const CGIResponse response = run({.cookie = cookieOf(session)});
    expectPage(response, "405 Method Not Allowed", caption(LOGOUT_NEEDS_BUTTON));
    EXPECT_EQ(response.header("Allow"), "POST");
    EXPECT_TRUE(isAlive(session));
}

TEST_F(LogoutTest, headEndsNoSession) {
    const CGIResponse response = run({.method = "HEAD", .cookie = cookieOf(session)});
    EXPECT_EQ(response.status, "405 Method Not Allowed");
    EXPECT_TRUE(isAlive(session));
}

TEST_F(LogoutTest, postFromAnotherSiteEndsNoSession) {
    const CGIResponse response = run({.method = "POST",
                                      .cookie = cookieOf(session),
                                      .more = {{"HTTP_SEC_FETCH_SITE", "cross-site"}}});
    EXPECT_EQ(response.status, "403 Forbidden");
    EXPECT_EQ(response.header("Set-Cookie"), "");
    EXPECT_TRUE(isAlive(session));
}

}  // namespace

}  // namespace VeskLib::Test
