// Tests of the partition table on the menu page.

#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/channel/boardRecords.h"
#include "tests/support/files.h"
#include "tests/support/markup.h"
#include "tests/support/sessions.h"
#include "tests/web/FakeBackend.h"
#include "tests/web/WebTest.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gmock/gmock.h>

namespace VeskLib::Test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

Host::ReplyFrame replyWith(const VeskUi::SerializableObject& object) {
    std::vector<unsigned char> bytes(object.getSerializedSize());
    object.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return {.errorCode = 0, .payload = bytes};
}

// Partitions 1 and 3 are installed. Partition 3 has system board 2 as its home board; partition 1
// has none.
std::vector<Host::ReplyFrame> sampleReplies() {
    VeskUi::PartitionInfoPacket partitions;
    partitions.addPartition({});
    partitions.addPartition({.installed = true, .name = "<i>one</i>", .nodeIds = {0x21}});
    partitions.addPartition({});
    partitions.addPartition({.installed = true, .name = "three", .nodeIds = {0x01, 0x12}});
    VeskUi::HardInstallInfoPacket boards;
    for (int number = 0; number < Host::BOARDS_OF_A_KIND; ++number) {
        VeskUi::HardInstallInfoPacket::SBData board;
        board.word = number == 1   ? Host::BOARD_INSTALLED
                     : number == 2 ? Host::BOARD_INSTALLED | Host::BOARD_IS_HOME
                                   : 0;
        boards.systemBoards.records.push_back(board);
    }
    VeskUi::VersionInfoPacket versions;
    for (const char* version : {"0.0", "1.0", "2.0"}) {
        versions.addBIOSVersion(version);
    }
    return {replyWith(partitions), replyWith(boards), replyWith(versions)};
}

class DailyRoundTest : public WebTest {
protected:
    DailyRoundTest() { writeText(boardFile("/var/run/board_properties"), "max_partitions=4\n"); }

    static CGIResponse showTo(const Host::Session& session) {
        return runWebProgram(MENU_PROGRAM,
                             {.cookie = cookieOf(session), .more = {{"TZ", "UTC-9"}}});
    }

    static CGIResponse show() {
        FakeBackend backend(sampleReplies());
        return showTo(startSession("admin", false, ",105,106,"));
    }

    static std::vector<std::string> rowsOf(const CGIResponse& response) {
        std::vector<std::string> rows;
        const std::string& page = response.body;
        for (std::size_t at = page.find("<tr><td"); at != std::string::npos;
             at = page.find("<tr><td", at + 1)) {
            rows.push_back(page.substr(at, page.find("</tr>", at) - at));
        }
        return rows;
    }

    static void log(const std::string& lines) {
        writePrivateText(boardFile("/var/log/audit.log"), lines);
    }

    static std::string lineOf(std::time_t secondsAgo, const std::string& members) {
        const std::time_t time = std::time(nullptr) - secondsAgo;
        std::tm utc = {};
        gmtime_r(&time, &utc);
        char text[64];
        std::strftime(text, sizeof text, "{\"time\":\"%Y-%m-%dT%H:%M:%S.000Z\",", &utc);
        return text + members + "}\n";
    }

    static std::string backup(int partition, std::time_t secondsAgo, const std::string& user,
                              const std::string& result = "done") {
        return lineOf(secondsAgo, R"("event":"backup","user":")" + user + R"(","partitions":[)" +
                                      std::to_string(partition) + R"(],"result":")" + result +
                                      "\"");
    }

    static std::string restore(const std::string& request, std::time_t secondsAgo,
                               const std::string& user, const std::string& result) {
        return lineOf(secondsAgo, R"("event":"restore","user":")" + user + R"(","request":")" +
                                      request + R"(","partitions":[1,3],"result":")" + result +
                                      "\"");
    }
};

const std::time_t DAY = 24 * 60 * 60;

TEST_F(DailyRoundTest, listsInstalledPartitionsWithVersions) {
    const std::vector<std::string> rows = rowsOf(show());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_THAT(textOf(rows[0]), HasSubstr("<i>one</i>"));
    EXPECT_THAT(rows[0], HasSubstr("\">-</td>"));
    EXPECT_THAT(textOf(rows[1]), HasSubstr("three"));
    EXPECT_THAT(rows[1], HasSubstr("\">2.0</td>"));
}

TEST_F(DailyRoundTest, showsLastBackupAndRestoreOfEachPartition) {
    log(backup(3, 9 * DAY, "old") + restore("1", 5 * DAY, "restorer", "begun") +
        restore("1", 5 * DAY, "restorer", "done") + backup(3, 2 * DAY + 60, "saver") +
        backup(3, DAY, "refused", "refused") + restore("2", DAY, "refused", "refused"));
    const std::vector<std::string> rows = rowsOf(show());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_THAT(textOf(rows[1]), HasSubstr("2 days ago"));
    EXPECT_THAT(textOf(rows[1]), HasSubstr("by saver"));
    EXPECT_THAT(textOf(rows[1]), HasSubstr("5 days ago"));
    EXPECT_THAT(textOf(rows[1]), HasSubstr("by restorer"));
    EXPECT_THAT(textOf(rows[0]), HasSubstr(caption(9388)));  // never backed up
    EXPECT_THAT(textOf(rows[0]), HasSubstr("by restorer"));
    for (const std::string& row : rows) {
        EXPECT_THAT(textOf(row), Not(HasSubstr("refused")));
        EXPECT_THAT(textOf(row), Not(HasSubstr("old")));
        EXPECT_THAT(textOf(row), Not(HasSubstr(caption(9392))));
    }
}

TEST_F(DailyRoundTest, marksRestoreWithoutOutcome) {
    log(restore("1", 3 * DAY, "a", "begun") + restore("1", 3 * DAY, "a", "failed") +
        restore("2", DAY + 60, "b", "begun"));
    const std::vector<std::string> rows = rowsOf(show());
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_THAT(textOf(rows[0]), HasSubstr(caption(9392)));
    EXPECT_THAT(textOf(rows[0]), HasSubstr("by b"));
    EXPECT_THAT(textOf(rows[0]), HasSubstr("1 day ago"));
    log(restore("1", 3 * DAY, "a", "begun") + restore("1", 3 * DAY, "a", "failed"));
    EXPECT_THAT(textOf(rowsOf(show()).at(0)), Not(HasSubstr("by a")));
}

TEST_F(DailyRoundTest, nextStartShowsHowARestoreEnded) {
    const std::string begun =
        lineOf(DAY, R"("event":"restore","user":"b","request":"1","partitions":[1],)"
                    R"("before":{"1":"old"},"after":{"1":"new"},"result":"begun")");
    const auto row = [&](const std::string& sum) {
        log(begun + lineOf(0, R"("event":"start","after":{"1":")" + sum + "\"}"));
        return textOf(rowsOf(show()).at(0));
    };
    EXPECT_THAT(row("new"), HasSubstr("by b"));
    EXPECT_THAT(row("new"), Not(HasSubstr(caption(9392))));
    EXPECT_THAT(row("old"), Not(HasSubstr("by b")));
    EXPECT_THAT(row("x"), HasSubstr(caption(9392)));
}

TEST_F(DailyRoundTest, saysThatALongLogWasReadInPart) {
    std::string other;
    while (other.size() < 5U * 1024 * 1024) {
        other += lineOf(0, "\"event\":\"start\"");
    }
    log(backup(3, DAY, "saver") + other);
    const CGIResponse response = show();
    EXPECT_THAT(textOf(response.body), HasSubstr(caption(9396)));
    EXPECT_THAT(textOf(response.body), Not(HasSubstr("by saver")));
    log(backup(3, DAY, "saver"));
    EXPECT_THAT(textOf(show().body), Not(HasSubstr(caption(9396))));
}

TEST_F(DailyRoundTest, linksOnlyPermittedScreens) {
    const auto linksFor = [](const std::string& functions) {
        FakeBackend backend(sampleReplies());
        std::vector<std::string> links;
        const CGIResponse response = showTo(startSession("user", false, functions));
        const std::vector<std::string> rows = rowsOf(response);
        for (const Tag& link : tagsOf(rows.empty() ? "" : rows.back(), "a")) {
            links.push_back(link.attributes.at("aria-label"));
        }
        return links;
    };
    EXPECT_THAT(linksFor(",105,106,"), ElementsAre("Back up 3", "Restore 3"));
    EXPECT_THAT(linksFor(",105,"), ElementsAre("Back up 3"));
    EXPECT_THAT(linksFor(",106,"), ElementsAre("Restore 3"));
}

TEST_F(DailyRoundTest, userWithoutRightsSeesNoPartitions) {
    FakeBackend backend(sampleReplies());
    const CGIResponse response = showTo(startSession("viewer", false, ",110,"));
    EXPECT_THAT(rowsOf(response), IsEmpty());
    EXPECT_THAT(textOf(response.body), Not(HasSubstr(caption(9380))));
    EXPECT_FALSE(backend.takeRequest());
}

TEST_F(DailyRoundTest, menuAppearsWithoutBackEnd) {
    const Host::Session session = startSession("admin", false, ",105,106,");
    const auto expectMenu = [](const CGIResponse& response, const std::string& code) {
        expectPage(response, "200 OK", caption(9394) + " [9394-" + code + "]");
        EXPECT_THAT(textOf(response.body), HasSubstr(caption(9156)));
        EXPECT_THAT(rowsOf(response), IsEmpty());
    };
    expectMenu(showTo(session), "2001");
    {
        FakeBackend backend(std::nullopt);  // closes the connection
        expectMenu(showTo(session), "2003");
    }
    {
        std::vector<Host::ReplyFrame> replies = sampleReplies();
        replies.resize(2);  // closes the connection before the third reply
        FakeBackend backend(replies);
        expectMenu(showTo(session), "2003");
    }
    {
        FakeBackend backend(Host::ReplyFrame{.errorCode = 1609, .payload = {}});
        expectMenu(showTo(session), "1609");
    }
    {
        FakeBackend backend(Host::ReplyFrame{.errorCode = 0, .payload = {0, 9, 1}});
        expectMenu(showTo(session), "2005");
    }
}

TEST_F(DailyRoundTest, saysThatBoardHasNoPartitions) {
    VeskUi::PartitionInfoPacket none;
    std::vector<Host::ReplyFrame> replies = sampleReplies();
    replies[0] = replyWith(none);
    FakeBackend backend(replies);
    const CGIResponse response = showTo(startSession("admin", false, ",105,"));
    expectPage(response, "200 OK", caption(9395));
}

}  // namespace

}  // namespace VeskLib::Test
