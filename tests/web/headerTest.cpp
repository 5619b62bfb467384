// Tests of the header of every page: the board, the user, and the session's remaining time.

#include "platform/host/session/Session.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>
#include <optional>

namespace VeskLib::Test {

namespace {

using testing::HasSubstr;
using testing::Not;

class HeaderTest : public WebTest {
protected:
    static void nameBoard(const std::string& name) {
        writeText(boardFile("/var/run/board_properties"), "max_partitions=1\nname=" + name + "\n");
    }

    static std::string titleOf(const CGIResponse& response) {
        const std::size_t start = response.body.find("<title>");
        const std::size_t end = response.body.find("</title>");
        EXPECT_NE(end, std::string::npos) << response.body;
        return unescapeHTML(response.body.substr(start + 7, end - start - 7));
    }

    static std::string headerOf(const std::string& page) {
        const std::size_t start = page.find("<header");
        const std::size_t end = page.find("<main>");
        EXPECT_NE(end, std::string::npos) << page;
        return page.substr(start, end - start);
    }

    // Returns the element with the session's remaining time.
    static std::optional<Tag> sessionLine(const CGIResponse& response) {
        for (const Tag& tag : tagsOf(response.body, "p")) {
            const auto id = tag.attributes.find("id");
            if (id != tag.attributes.end() && id->second == "session") {
                return tag;
            }
        }
        return std::nullopt;
    }

    static void lastUsedAgo(const Host::Session& session, std::time_t seconds) {
        const timespec then = {.tv_sec = std::time(nullptr) - seconds, .tv_nsec = 0};
        const timespec times[] = {then, then};
        const std::string path = boardFile("/var/lib/session/" + session.identifier);
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }

    static CGIResponse menu(const Host::Session& session) {
        return runWebProgram(MENU_PROGRAM, {.cookie = cookieOf(session)});
    }
};

TEST_F(HeaderTest, namesTheBoardWithAndWithoutLogin) {
    nameBoard("Rack 4, row 12");
    const CGIResponse login = runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"});
    EXPECT_EQ(titleOf(login), "Log in - Rack 4, row 12 - Server Management Board");
    EXPECT_THAT(textOf(headerOf(login.body)), HasSubstr("Rack 4, row 12"));
    const CGIResponse error = runWebProgram(DOWNLOAD_PROGRAM, {});
    EXPECT_THAT(titleOf(error), HasSubstr(" - Rack 4, row 12 - "));
    EXPECT_THAT(textOf(headerOf(error.body)), HasSubstr("Rack 4, row 12"));
    const Host::Session session = startSession("admin", false, "");
    const CGIResponse shown = menu(session);
    EXPECT_EQ(titleOf(shown), "Menu - Rack 4, row 12 - Server Management Board");
    EXPECT_THAT(textOf(headerOf(shown.body)), HasSubstr("Rack 4, row 12"));
}

TEST_F(HeaderTest, boardWithoutNameGetsAPage) {
    const CGIResponse login = runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"});
    EXPECT_EQ(titleOf(login), "Log in - Server Management Board");
    EXPECT_THAT(login.body, Not(HasSubstr("board-name")));
    ASSERT_EQ(::mkdir(boardFile("/var/run/board_properties").c_str(), 0700), 0);
    EXPECT_EQ(titleOf(runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"})),
              "Log in - Server Management Board");
}

TEST_F(HeaderTest, boardNameAddsNoMarkup) {
    nameBoard("x");
    const auto tags = [] {
        return tagNamesOf(runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"}).body);
    };
    const std::vector<std::string> plain = tags();
    for (const std::string& name : printableTexts()) {
        nameBoard(name);
        EXPECT_EQ(tags(), plain) << name;
    }
    nameBoard("left\xE2\x80\xAEright");
    EXPECT_EQ(titleOf(runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"})),
              "Log in - left\uFFFDright - Server Management Board");
}

TEST_F(HeaderTest, showsSessionAndLogoutToUser) {
    const Host::Session session = startSession("admin", false, "");
    for (const std::string& page :
         {menu(session).body, runWebProgram(ACTIVITY_PROGRAM, {.cookie = cookieOf(session)}).body,
          runWebProgram(DOWNLOAD_PROGRAM, {.cookie = cookieOf(session)}).body}) {
        const std::string header = headerOf(page);
        EXPECT_THAT(textOf(header), HasSubstr("admin"));
        EXPECT_THAT(textOf(header), testing::ContainsRegex("Session ends in (29|30) min"));
        EXPECT_THAT(header, HasSubstr("method=\"post\" action=\"/logout.cgi\""));
        EXPECT_THAT(header, HasSubstr("/activity.cgi"));
        EXPECT_THAT(header, HasSubstr("aria-live="));
    }
}

TEST_F(HeaderTest, showsNoSessionWithoutLogin) {
    for (const CGIResponse& response :
         {runWebProgram(LOGIN_PROGRAM, {.cookie = "device=x"}), runWebProgram(DOWNLOAD_PROGRAM, {}),
          runWebProgram(STAY_PROGRAM, {})}) {
        EXPECT_FALSE(sessionLine(response));
        EXPECT_THAT(response.body, Not(HasSubstr("/logout.cgi")));
        EXPECT_THAT(response.body, Not(HasSubstr("session.js")));
    }
}

// No page shows more time than the session's file grants.
TEST_F(HeaderTest, remainingTimeIsCorrect) {
    const Host::Session session = startSession("admin", false, "");
    const auto leftAfter = [&session](std::time_t seconds) {
        lastUsedAgo(session, seconds);
        const std::optional<Tag> line = sessionLine(menu(session));
        EXPECT_TRUE(line);
        return std::stol(line ? line->attributes.at("data-left") : "0");
    };
    // Not recorded as a use, because less than a minute has passed since the last.
    EXPECT_LE(leftAfter(40), Host::SESSION_IDLE_SECONDS - 40);
    EXPECT_GE(leftAfter(40), Host::SESSION_IDLE_SECONDS - 58);
    // Recorded, so that the whole time is left.
    const long noted = leftAfter(300);
    EXPECT_LE(noted, Host::SESSION_IDLE_SECONDS);
    EXPECT_GE(noted, Host::SESSION_IDLE_SECONDS - 20);
}

TEST_F(HeaderTest, remainingTimeIsLimitedBySessionLife) {
    const Host::Session session = startSession("admin", false, "");
    const std::string path = boardFile("/var/lib/session/" + session.identifier);
    std::string text = readText(path);
    const std::size_t start = text.find("created=");
    text.replace(start, text.find('\n', start) - start,
                 "created=" + std::to_string(session.created - Host::SESSION_LIFE_SECONDS + 300));
    writePrivateText(path, text);
    const std::optional<Tag> line = sessionLine(menu(session));
    ASSERT_TRUE(line);
    EXPECT_LE(std::stol(line->attributes.at("data-left")), 300);
    EXPECT_GE(std::stol(line->attributes.at("data-left")), 240);
    EXPECT_EQ(line->attributes.at("data-left"), line->attributes.at("data-life"));
}

TEST_F(HeaderTest, stayExtendsTheSession) {
    const Host::Session session = startSession("admin", false, "");
    lastUsedAgo(session, Host::SESSION_IDLE_SECONDS - 60);
    const CGIResponse response =
        runWebProgram(STAY_PROGRAM, {.query = "use=1", .cookie = cookieOf(session)});
    EXPECT_EQ(response.status, "200 OK");
    EXPECT_EQ(response.header("Content-Type"), "image/svg+xml; charset=UTF-8");
    Host::Session found;
    ASSERT_TRUE(Host::findSession(session.cookieValue(), found));
    EXPECT_GE(found.ends, std::time(nullptr) + Host::SESSION_IDLE_SECONDS - 60);
}

TEST_F(HeaderTest, stayNeedsASession) {
    const Host::Session expired = startSession("admin", false, "");
    expire(expired);
    expectPage(runWebProgram(STAY_PROGRAM, {.query = "use=1", .cookie = cookieOf(expired)}),
               "403 Forbidden", caption(9026));
}

TEST_F(HeaderTest, stayFromAnotherSiteIsRefused) {
    const Host::Session session = startSession("admin", false, "");
    lastUsedAgo(session, 600);
    expectPage(runWebProgram(STAY_PROGRAM, {.query = "use=1",
                                            .cookie = cookieOf(session),
                                            .more = {{"HTTP_SEC_FETCH_SITE", "same-site"}}}),
               "403 Forbidden", caption(9025));
}

// The header is repeated in three skeletons, because reading it from a fourth file would cost
// system calls.
TEST_F(HeaderTest, headerIsTheSameInEverySkeleton) {
    const std::string frame =
        headerOf(readText(std::string(WEB_SKELETONS) + "/skeleton_web_frame.txt"));
    for (const char* name : {"/skeleton_shell.txt", "/skeleton_error.txt"}) {
        EXPECT_EQ(headerOf(readText(std::string(PLATFORM_SKELETONS) + name)), frame) << name;
    }
}

TEST_F(HeaderTest, errorPageLeadsBackAfterLogin) {
    const CGIResponse response = runWebProgram(DOWNLOAD_PROGRAM, {.query = "functionID=105"});
    std::vector<std::string> links;
    for (const Tag& link : tagsOf(response.body, "a")) {
        links.push_back(link.attributes.at("href"));
    }
    EXPECT_THAT(links, testing::Contains("/login.cgi?functionID=105"));
}

}  // namespace

}  // namespace VeskLib::Test
