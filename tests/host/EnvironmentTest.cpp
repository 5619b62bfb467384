#include "platform/host/base/Environment.h"

#include "tests/support/ScopedEnvironment.h"

#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::readCookie;
using Host::readEnvironment;

namespace {

std::string sessionIn(const std::string& cookies) {
    const ScopedEnvironment environment("HTTP_COOKIE", cookies);
    return readCookie("session");
}

}  // namespace

TEST(EnvironmentTest, returnsEmptyForUnsetVariable) {
    const ScopedEnvironment unset("BOARD_TEST_VARIABLE", std::nullopt);
    EXPECT_EQ(readEnvironment("BOARD_TEST_VARIABLE"), "");
    const ScopedEnvironment set("BOARD_TEST_VARIABLE", " a=b ");
    EXPECT_EQ(readEnvironment("BOARD_TEST_VARIABLE"), " a=b ");
}

TEST(EnvironmentTest, findsCookieAmongOthers) {
    EXPECT_EQ(sessionIn("session=abc"), "abc");
    EXPECT_EQ(sessionIn("language=ja; session=abc; x=1"), "abc");
    EXPECT_EQ(sessionIn("language=ja;session=abc;x=1"), "abc");
    EXPECT_EQ(sessionIn("a=1; \t session=abc"), "abc");
}

TEST(EnvironmentTest, returnsEmptyForMissingCookie) {
    const ScopedEnvironment environment("HTTP_COOKIE", std::nullopt);
    EXPECT_EQ(readCookie("session"), "");
    EXPECT_EQ(sessionIn(""), "");
    EXPECT_EQ(sessionIn("language=ja"), "");
    EXPECT_EQ(sessionIn("session="), "");
}

TEST(EnvironmentTest, comparesWholeNames) {
    EXPECT_EQ(sessionIn("mysession=1; sessionid=2; sessio=3; SESSION=4; session =5"), "");
    EXPECT_EQ(sessionIn("sessionsession=1; session=2"), "2");
    EXPECT_EQ(sessionIn("x=session=1"), "");
}

TEST(EnvironmentTest, prefersFirstCookieOfName) {
    EXPECT_EQ(sessionIn("session=first; session=second"), "first");
}

TEST(EnvironmentTest, keepsCookieValueVerbatim) {
    EXPECT_EQ(sessionIn("session=a=b"), "a=b");
    EXPECT_EQ(sessionIn("session=\"quoted\""), "\"quoted\"");
    EXPECT_EQ(sessionIn("session=../../etc/passwd"), "../../etc/passwd");
    EXPECT_EQ(sessionIn("session=\r\n<script>"), "\r\n<script>");
}

TEST(EnvironmentTest, readsHostileHeadersToEnd) {
    for (const char* cookies : {";", ";;;;", " ", "; ;", "=", "==;=", "session", "session;", "\t\t",
                                ";session", "\xFF\xFE;\x01"}) {
        EXPECT_EQ(sessionIn(cookies), "") << cookies;
    }
    EXPECT_EQ(sessionIn(std::string(50000, ';') + "session=deep"), "deep");
    EXPECT_EQ(sessionIn("session=" + std::string(50000, 'x')).size(), 50000u);
}

TEST(HostPathTest, isUnderRoot) {
    const ScopedEnvironment root("BOARD_ROOT", "/somewhere/root");
    EXPECT_EQ(getCGIPath("/var/tmp/x"), "/somewhere/root/var/tmp/x");
}

TEST(HostPathTest, isUnchangedWithoutRoot) {
    const ScopedEnvironment root("BOARD_ROOT", std::nullopt);
    EXPECT_EQ(getCGIPath("/var/tmp/x"), "/var/tmp/x");
}

}  // namespace VeskLib::Test
