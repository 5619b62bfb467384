#include "platform/host/audit/AuditHistory.h"

#include "platform/host/audit/AuditLog.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace VeskLib::Test {

using namespace Host;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::size_t ENOUGH = 1024 * 1024;

std::string lineOf(const std::string& members) {
    return R"({"time":"2026-11-22T08:12:26.123Z","event":"start")" + members + "}";
}

bool isLine(const std::string& text) {
    AuditRecord record;
    return decode(text, record);
}

class AuditHistoryTest : public BoardTest {
protected:
    static std::string path(int number = 0) {
        return boardFile("/var/log/audit.log") + (number == 0 ? "" : "." + std::to_string(number));
    }

    static std::vector<std::string> linesOf(AuditHistory& history) {
        std::vector<std::string> lines;
        std::string_view line;
        while (history.next(line)) {
            lines.emplace_back(line);
        }
        return lines;
    }

    static std::vector<std::string> readAll(std::size_t mostBytes = ENOUGH) {
        AuditHistory history(mostBytes);
        return linesOf(history);
    }
};

}  // namespace

TEST_F(AuditHistoryTest, readsNewestLineFirstAcrossRotatedFiles) {
    writePrivateText(path(), "6\n7\n");
    writePrivateText(path(1), "4\n5\n");
    writePrivateText(path(2), "3\n");
    EXPECT_THAT(readAll(), ElementsAre("7", "6", "5", "4", "3"));
}

TEST_F(AuditHistoryTest, isEmptyWithoutLog) {
    AuditHistory history(ENOUGH);
    EXPECT_THAT(linesOf(history), IsEmpty());
    EXPECT_FALSE(history.wasCut());
    EXPECT_FALSE(history.wasUnreadable());
}

TEST_F(AuditHistoryTest, readsRotatedFileWithoutCurrentOne) {
    writePrivateText(path(1), "1\n");
    EXPECT_THAT(readAll(), ElementsAre("1"));
}

TEST_F(AuditHistoryTest, skipsUnfinishedLine) {
    writePrivateText(path(), "1\n2\nhal");
    EXPECT_THAT(readAll(), ElementsAre("2", "1"));
    writePrivateText(path(), "hal");
    EXPECT_THAT(readAll(), IsEmpty());
}

TEST_F(AuditHistoryTest, stopsAtByteLimit) {
    writePrivateText(path(), "1111\n2222\n3333\n");
    writePrivateText(path(1), "0000\n");
    for (std::size_t most = 0; most <= 20; ++most) {
        AuditHistory history(most);
        const std::vector<std::string> lines = linesOf(history);
        // The first line is known to be whole only if the byte before it was read.
        const std::size_t expected = most == 20   ? 4
                                     : most >= 15 ? 3
                                     : most == 0  ? 0
                                                  : (most - 1) / 5;
        EXPECT_EQ(lines.size(), expected) << most;
        EXPECT_EQ(history.wasCut(), most < 20) << most;
    }
}

TEST_F(AuditHistoryTest, readsEachLineOnceDespiteRotation) {
    writePrivateText(path(), "3\n4\n");
    writePrivateText(path(1), "1\n2\n");
    AuditHistory history(ENOUGH);
    std::string_view line;
    ASSERT_TRUE(history.next(line));
    std::rename(path(1).c_str(), path(2).c_str());
    std::rename(path().c_str(), path(1).c_str());
    writePrivateText(path(), "5\n");
    EXPECT_THAT(linesOf(history), ElementsAre("3", "2", "1"));
}

TEST_F(AuditHistoryTest, reportsLinkAsUnreadable) {
    writePrivateText(path(), "2\n");
    ASSERT_EQ(::symlink("/etc/passwd", path(1).c_str()), 0);
    AuditHistory history(ENOUGH);
    EXPECT_THAT(linesOf(history), ElementsAre("2"));
    EXPECT_TRUE(history.wasUnreadable());
}

TEST_F(AuditHistoryTest, doesNotBlockOnPipe) {
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    AuditHistory history(ENOUGH);
    EXPECT_THAT(linesOf(history), IsEmpty());
    EXPECT_TRUE(history.wasUnreadable());
}

TEST_F(AuditHistoryTest, readsBackRecordedEvent) {
    writeText(boardFile("/var/run/board_properties"), "max_partitions=8\nname=b\n");
    AuditEvent event;
    event.event = "restore";
    event.user = "J\xC3\xBCrgen \"<b>\xE2\x80\xAE";
    event.address = "192.0.2.1";
    event.session = "0123456789abcdef";
    event.request = "7-9";
    event.partitions = {0, 255};
    event.file = AuditedFile{.sha256 = "ab", .partition = 5, .version = "1.2", .saved = 1};
    event.before[0] = "aa";
    event.after[0] = "bb";
    event.counts["refusal"] = 3;
    event.reason = "rights";
    event.order = "die";
    event.result = "failed";
    event.code = 1603;
    const std::time_t before = std::time(nullptr);
    record(event);
    AuditRecord read;
    ASSERT_TRUE(decode(readAll().at(0), read));
    EXPECT_GE(read.time, before);
    EXPECT_LE(read.time, std::time(nullptr));
    EXPECT_EQ(read.event.event, event.event);
    EXPECT_EQ(read.event.user, event.user);
    EXPECT_EQ(read.event.address, event.address);
    EXPECT_EQ(read.event.request, event.request);
    EXPECT_EQ(read.event.partitions, event.partitions);
    ASSERT_TRUE(read.event.file);
    EXPECT_EQ(read.event.file->sha256, "ab");
    EXPECT_EQ(read.event.file->partition, 5U);
    EXPECT_EQ(read.event.file->version, "1.2");
    EXPECT_EQ(read.event.before, event.before);
    EXPECT_EQ(read.event.after, event.after);
    EXPECT_EQ(read.event.counts, event.counts);
    EXPECT_EQ(read.event.reason, event.reason);
    EXPECT_EQ(read.event.order, event.order);
    EXPECT_EQ(read.event.result, event.result);
    EXPECT_EQ(read.event.code, event.code);
}

TEST(AuditLineTest, readsTimeAsUTC) {
    AuditRecord record;
    ASSERT_TRUE(decode(lineOf(""), record));
    EXPECT_EQ(record.time, 1795335146);
}

TEST(AuditLineTest, skipsUnknownMembers) {
    EXPECT_TRUE(
        isLine(lineOf(R"(,"later":{"a":[1,{"b":null}],"file":2},"more":[true,-1.5],"n":-7)")));
}

TEST(AuditLineTest, acceptsSumsOfEveryPartitionAndNoMore) {
    std::string sums = R"("0":"a")";
    for (int partition = 1; partition < 256; ++partition) {
        sums += ",\"" + std::to_string(partition) + "\":\"b\"";
    }
    AuditRecord record;
    ASSERT_TRUE(decode(lineOf(",\"after\":{" + sums + "}"), record));
    EXPECT_EQ(record.event.after.size(), 256U);
    EXPECT_EQ(record.event.after[255], "b");
    EXPECT_FALSE(isLine(lineOf(",\"after\":{" + sums + R"(,"256":"c"})")));
}

TEST(AuditLineTest, rejectsEveryTruncatedLine) {
    const std::string whole =
        lineOf(R"(,"user":"a","partitions":[1,2],"file":{"sha256":"ab","partition":3},"code":7)");
    ASSERT_TRUE(isLine(whole));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(isLine(whole.substr(0, size))) << size;
    }
    EXPECT_FALSE(isLine(whole + "}"));
}

TEST(AuditLineTest, rejectsMembersOfWrongType) {
    for (const char* member : {R"("user":1)",
                               R"("user":null)",
                               R"("user":{})",
                               R"("user":["a"])",
                               R"("code":"7")",
                               R"("code":-7)",
                               R"("code":7.5)",
                               R"("code":99999999999)",
                               R"("partitions":3)",
                               R"("partitions":{"a":3})",
                               R"("partitions":["3"])",
                               R"("partitions":[-3])",
                               R"("partitions":[4294967296])",
                               R"("partitions":[[3]])",
                               R"("file":"x")",
                               R"("file":[1])",
                               R"("file":{"sha256":1})",
                               R"("file":{"partition":"x"})",
                               R"("file":{"version":{}})",
                               R"("counts":[1])",
                               R"("counts":{"a":"b"})",
                               R"("counts":{"a":{}})",
                               R"("before":"x")",
                               R"("before":{"x":"y"})",
                               R"("after":["x"])",
                               R"("after":{"1":2})",
                               R"("after":{"1":{}})",
                               R"("after":{"":"x"})",
                               R"("after":{"-1":"x"})",
                               R"("time":7)",
                               R"("event":true)"}) {
        EXPECT_FALSE(isLine(lineOf(std::string(",") + member))) << member;
    }
}

TEST(AuditLineTest, rejectsInvalidLines) {
    for (const char* text :
         {"", "x", "7", "\"x\"", "null", "[]", "{}", R"({"event":"start"})",
          R"({"time":"2026-11-22T08:12:26.123Z"})", R"({"time":"","event":"start"})",
          R"({"time":"2026-11-31T08:12:26.123Z","event":"start"})",
          R"({"time":"2026-11-22T24:12:26.123Z","event":"start"})",
          R"({"time":"1969-12-31T08:12:26.123Z","event":"start"})",
          R"({"time":"2262-01-01T08:12:26.123Z","event":"start"})",
          R"({"time":"2026-11-22T08:12:26.123+","event":"start"})",
          R"({"time":"2026-11-22 08:12:26.123Z","event":"start"})",
          R"({"time":"2026-11-22T08:12:26.123Z","event":""})",
          "[{\"time\":\"2026-11-22T08:12:26.123Z\",\"event\":\"start\"}]"}) {
        EXPECT_FALSE(isLine(text)) << text;
    }
    EXPECT_FALSE(isLine(lineOf(",\"user\":\"\xFF\"")));
    EXPECT_FALSE(isLine(lineOf(",\"user\":\"" + std::string(5000, 'x') + "\"")));
    EXPECT_FALSE(isLine(lineOf(R"(,"after":{"1":")" + std::string(65, 'x') + "\"}")));
    EXPECT_FALSE(isLine(lineOf(",\"x\":\"" + std::string(200000, 'x') + "\"")));
    EXPECT_FALSE(isLine(std::string(100000, '[')));
}

}  // namespace VeskLib::Test
