#include "platform/host/audit/AuditLog.h"
#include "platform/host/text/Catalogue.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"
#include "tests/web/WebTest.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace VeskLib::Test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ActivityTest : public WebTest {
protected:
    static CGIResponse showTo(const Host::Session& session) {
        return runWebProgram(ACTIVITY_PROGRAM,
                             {.cookie = cookieOf(session), .more = {{"TZ", "UTC-9"}}});
    }

    static Host::AuditEvent eventOf(const std::string& name, const std::string& user) {
        Host::AuditEvent event;
        event.event = name;
        event.user = user;
        return event;
    }

    // Returns a restore of partitions 2 and 3 with the given result ("begun", "done", ...).
    static Host::AuditEvent restoreWith(const std::string& result, const std::string& request) {
        Host::AuditEvent event = eventOf("restore", "admin");
        event.address = "192.0.2.1";
        event.request = request;
        event.partitions = {2, 3};
        event.file = Host::AuditedFile{.sha256 = "0123456789abcdef0123456789abcdef",
                                       .partition = 5,
                                       .version = "1.23 B",
                                       .saved = 1};
        event.result = result;
        return event;
    }

    // Returns the text of each table row.
    static std::vector<std::string> rowsOf(const CGIResponse& response) {
        std::vector<std::string> rows;
        const std::string& page = response.body;
        for (std::size_t at = page.find("<tr><td"); at != std::string::npos;
             at = page.find("<tr><td", at + 1)) {
            rows.push_back(textOf(page.substr(at, page.find("</tr>", at) - at)));
        }
        return rows;
    }

    const Host::Session admin = startSession("admin", false, ",105,106,110,");
    const Host::Session user = startSession("user", false, ",105,");
};

TEST_F(ActivityTest, anonymousUserIsSentToLoginAndBack) {
    expectRedirection(runWebProgram(ACTIVITY_PROGRAM, {}), "/login.cgi?functionID=110");
}

TEST_F(ActivityTest, describesActionInWords) {
    writePrivateText(
        boardFile("/var/log/audit.log"),
        R"({"time":"2026-11-22T20:12:26.123Z","event":"restore","user":"admin",)"
        R"("address":"192.0.2.1","request":"r","partitions":[2,3],"file":{"sha256":)"
        R"("0123456789abcdef0123","partition":5,"version":"1.23 B"},"result":"refused","code":1549})"
        "\n");
    const CGIResponse response = showTo(admin);
    expectPage(response, "200 OK", caption(9301));
    const std::vector<std::string> rows = rowsOf(response);
    ASSERT_EQ(rows.size(), 1U);
    for (const std::string& text :
         {std::string("2026-11-23 05:12:26"), std::string("2026-11-22 20:12:26 UTC"),
          std::string("admin"), std::string("192.0.2.1"), caption(9328), std::string("2, 3"),
          std::string("Saved from partition 5, BIOS version 1.23 B"),
          std::string("SHA-256 0123456789ab\u2026"), caption(9341),
          std::string("a partition was running"), std::string("[1549]")}) {
        EXPECT_THAT(rows[0], HasSubstr(text));
    }
    EXPECT_THAT(response.body, HasSubstr("datetime=\"2026-11-22T20:12:26Z\""));
}

TEST_F(ActivityTest, onlyPermittedUsersSeeActionsOfOthers) {
    Host::record(eventOf("start", ""));
    Host::record(eventOf("upload", "admin"));
    Host::record(eventOf("backup", "user"));
    EXPECT_EQ(rowsOf(showTo(admin)).size(), 3U);
    const CGIResponse own = showTo(user);
    ASSERT_EQ(rowsOf(own).size(), 1U);
    EXPECT_THAT(rowsOf(own)[0], HasSubstr(caption(9325)));
    EXPECT_THAT(textOf(own.body), HasSubstr(caption(9303)));
    EXPECT_EQ(rowsOf(showTo(startSession("root", true, ""))).size(), 3U);
    // "use" is a prefix of "user".
    EXPECT_EQ(rowsOf(showTo(startSession("use", false, ""))).size(), 0U);
}

TEST_F(ActivityTest, newestActionIsFirst) {
    Host::record(eventOf("upload", "user"));
    Host::record(eventOf("discard", "user"));
    const std::vector<std::string> rows = rowsOf(showTo(user));
    EXPECT_THAT(rows, ElementsAre(HasSubstr(caption(9329)), HasSubstr(caption(9327))));
}

TEST_F(ActivityTest, restoreIsOneRowWithItsOutcome) {
    Host::record(restoreWith("begun", "1"));
    Host::record(restoreWith("done", "1"));
    Host::record(restoreWith("begun", "2"));
    EXPECT_THAT(rowsOf(showTo(admin)),
                ElementsAre(HasSubstr(caption(9342)), HasSubstr(caption(9340))));
}

TEST_F(ActivityTest, nextStartShowsHowARestoreEnded) {
    Host::AuditEvent restore = restoreWith("begun", "1");
    restore.before = {{2, "old"}, {3, "other"}};
    restore.after = {{2, "new"}, {3, "new"}};
    Host::AuditEvent start = eventOf("start", "");
    const auto row = [&](const std::map<unsigned int, std::string>& found,
                         const std::vector<Host::AuditEvent>& between = {}) {
        writePrivateText(boardFile("/var/log/audit.log"), "");
        Host::record(restore);
        for (const Host::AuditEvent& event : between) {
            Host::record(event);
        }
        start.after = found;
        Host::record(start);
        // Those who do not see the start are told, too.
        EXPECT_EQ(rowsOf(showTo(startSession("admin", false, ""))).back(),
                  rowsOf(showTo(admin)).back());
        return rowsOf(showTo(admin)).back();
    };
    EXPECT_THAT(row({{1, "x"}, {2, "new"}, {3, "new"}}), HasSubstr(caption(9344)));
    EXPECT_THAT(row({{1, "x"}, {2, "old"}, {3, "other"}}), HasSubstr(caption(9345)));
    EXPECT_THAT(row({{2, "new"}}), HasSubstr(caption(9342)));
    EXPECT_THAT(row({{2, "new"}, {3, "other"}}), HasSubstr(caption(9342)));
    EXPECT_THAT(row({}), HasSubstr(caption(9342)));
    // Only the first start after the restore counts, and only if nothing else was restored before.
    start.after = {{2, "old"}, {3, "other"}};
    EXPECT_THAT(row({{2, "new"}, {3, "new"}}, {start}), HasSubstr(caption(9345)));
    EXPECT_THAT(row({{2, "new"}, {3, "new"}}, {restoreWith("done", "2")}),
                HasSubstr(caption(9342)));
}

TEST_F(ActivityTest, hostileTextsAddNoMarkup) {
    Host::record(eventOf("backup", "plain"));
    const std::vector<std::string> plain = tagNamesOf(showTo(admin).body);
    for (const std::string& text : hostileTexts()) {
        writePrivateText(boardFile("/var/log/audit.log"), "");
        Host::AuditEvent event = eventOf("backup", text.empty() ? "x" : text);
        Host::record(event);
        EXPECT_EQ(tagNamesOf(showTo(admin).body), plain) << text;
    }
    writePrivateText(boardFile("/var/log/audit.log"), "");
    Host::AuditEvent event = restoreWith("<i>&", "1");
    event.event = "<b>x\xE2\x80\xAE";
    event.address = "<u>";
    event.reason = "<s>\n";
    event.file->version = "<p>\x1B[2J";
    Host::record(event);
    const CGIResponse response = showTo(admin);
    for (const char* text : {"<b>x\uFFFD", "<i>&", "<u>", "<s>\u240A", "<p>\u241B[2J"}) {
        EXPECT_THAT(rowsOf(response).at(0), HasSubstr(text));
    }
    for (const char* tag : {"b", "i", "u", "s"}) {
        EXPECT_TRUE(tagsOf(response.body, tag).empty()) << tag;
    }
}

TEST_F(ActivityTest, skipsDamagedLines) {
    Host::record(eventOf("backup", "user"));
    const std::string path = boardFile("/var/log/audit.log");
    const std::string whole = readText(path);
    writePrivateText(path, "{\"time\":\"20\n\n\xFF\xFE\n[1]\n" + whole + "{\"half\n" + whole + "{");
    EXPECT_EQ(rowsOf(showTo(user)).size(), 2U);
}

TEST_F(ActivityTest, showsAtMostAHundredActions) {
    Host::record(eventOf("backup", "user"));
    const std::string path = boardFile("/var/log/audit.log");
    const std::string line = readText(path);
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += line;
    }
    writePrivateText(path, text);
    EXPECT_EQ(rowsOf(showTo(user)).size(), 100U);
    EXPECT_THAT(textOf(showTo(user).body), Not(HasSubstr(caption(9314))));
    writePrivateText(path, text + line);
    EXPECT_EQ(rowsOf(showTo(user)).size(), 100U);
    EXPECT_THAT(textOf(showTo(user).body), HasSubstr(caption(9314)));
}

TEST_F(ActivityTest, readsOnlyTheEndOfALongLog) {
    Host::record(eventOf("backup", "user"));
    const std::string path = boardFile("/var/log/audit.log");
    std::string other;
    while (other.size() < 5U * 1024 * 1024) {
        other += R"({"time":"2026-11-22T20:12:26.123Z","event":"start"})"
                 "\n";
    }
    writePrivateText(path, readText(path) + other);
    const CGIResponse response = showTo(user);
    EXPECT_EQ(rowsOf(response).size(), 0U);
    EXPECT_THAT(textOf(response.body), HasSubstr(caption(9314)));
    EXPECT_THAT(textOf(response.body), HasSubstr(caption(9306)));
}

TEST_F(ActivityTest, reportsUnreadableLog) {
    ASSERT_EQ(::mkfifo(boardFile("/var/log/audit.log").c_str(), 0600), 0);
    expectPage(showTo(user), "200 OK", caption(9305));
}

TEST_F(ActivityTest, everyEventHasWordsInEveryLanguage) {
    for (int number = 9320; number <= 9335; ++number) {
        for (int language = 0; language < std::ssize(Host::languages()); ++language) {
            EXPECT_NE(Host::findText(language, Host::TextSet::CAPTIONS, number), nullptr) << number;
        }
    }
    for (const char* event : {"login", "login_failed", "logout", "session_expired", "session_ended",
                              "backup", "download", "upload", "restore", "discard", "refusal",
                              "fault_order", "start", "end", "anonymous", "repeated"}) {
        writePrivateText(boardFile("/var/log/audit.log"), "");
        Host::record(eventOf(event, "admin"));
        EXPECT_THAT(rowsOf(showTo(admin)).at(0), Not(HasSubstr(std::string(" ") + event + " ")));
    }
}

TEST_F(ActivityTest, postIsNotAllowed) {
    const CGIResponse response =
        runWebProgram(ACTIVITY_PROGRAM, {.method = "POST", .cookie = cookieOf(user)});
    expectPage(response, "405 Method Not Allowed", caption(9024));
    EXPECT_EQ(response.header("Allow"), "GET, HEAD");
}

}  // namespace

}  // namespace VeskLib::Test
