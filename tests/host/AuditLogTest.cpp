#include "platform/host/audit/AuditLog.h"

#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/channel/FrameStream.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/host/refusal.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedLimit.h"
#include "tests/support/files.h"
#include "tests/support/happensInTime.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

namespace VeskLib::Test {

using namespace Host;
using testing::StartsWith;
using JSON = nlohmann::json;

namespace {

class AuditLogTest : public BoardTest {
protected:
    static AuditEvent eventOf(const std::string& name) {
        AuditEvent event;
        event.event = name;
        return event;
    }

    static std::string path() { return boardFile("/var/log/audit.log"); }

    static std::vector<std::string> lines() {
        return exists(path()) ? linesOf(readText(path())) : std::vector<std::string>();
    }

    static JSON lastLine() { return JSON::parse(lines().back()); }
};

}  // namespace

TEST_F(AuditLogTest, writesEveryKnownField) {
    AuditEvent event = eventOf("restore");
    event.user = "admin";
    event.address = "192.0.2.1";
    event.session = "0123456789abcdef";
    event.request = "7-9";
    event.partitions = {0, 3};
    event.file = AuditedFile{.sha256 = "ab", .partition = 5, .version = "1.2", .saved = 1};
    event.before[0] = "aa";
    event.after[0] = "bb";
    event.result = "done";
    record(event);
    const std::string line = lines().at(0);
    EXPECT_THAT(line, testing::MatchesRegex(
                          "\\{\"time\":\"20[0-9-]+T[0-9:]+\\.[0-9][0-9][0-9]Z\","
                          "\"event\":\"restore\",\"user\":\"admin\",\"address\":\"192.0.2.1\","
                          "\"session\":\"0123456789abcdef\",\"request\":\"7-9\","
                          "\"partitions\":\\[0,3\\],\"file\":\\{\"sha256\":\"ab\",\"partition\":5,"
                          "\"version\":\"1.2\",\"saved\":\"1970-01-01T00:00:01.000Z\"\\},"
                          "\"before\":\\{\"0\":\"aa\"\\},\"after\":\\{\"0\":\"bb\"\\},"
                          "\"result\":\"done\"\\}"));
}

TEST_F(AuditLogTest, omitsUnknownFields) {
    record(eventOf("start"));
    EXPECT_EQ(lastLine().size(), 2U);
}

TEST_F(AuditLogTest, writesOnlyPrintableASCII) {
    for (const char* text : {"a\nb", "\"}", "\x1B[2J", "\xE2\x80\xAE", "\xFF\xFE", "\\"}) {
        AuditEvent event = eventOf("login");
        event.user = text;
        const std::size_t before = lines().size();
        record(event);
        ASSERT_EQ(lines().size(), before + 1);
        const std::string line = lines().back();
        for (const char byte : line) {
            EXPECT_TRUE(byte >= 0x20 && byte < 0x7F) << line;
        }
        EXPECT_EQ(lastLine()["event"], "login");
    }
}

TEST_F(AuditLogTest, isAccessibleToOwnerOnly) {
    const mode_t before = ::umask(0);
    record(eventOf("start"));
    recordRefusal(eventOf("refusal"));
    ::umask(before);
    for (const std::string& name : namesIn(boardFile("/var/log"))) {
        struct stat status = {};
        ASSERT_EQ(::stat(boardFile("/var/log/" + name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0600U) << name;
    }
}

TEST_F(AuditLogTest, rejectsLinkAndPipe) {
    ASSERT_EQ(::symlink("elsewhere", path().c_str()), 0);
    EXPECT_EQ(codeOf([] { record(eventOf("start")); }), AUDIT_NOT_WRITTEN);
    std::filesystem::remove(path());
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    EXPECT_EQ(codeOf([] { record(eventOf("start")); }), AUDIT_NOT_WRITTEN);
    EXPECT_FALSE(exists(boardFile("/var/log/elsewhere")));
}

TEST_F(AuditLogTest, startsNewLineAfterTruncatedOne) {
    writePrivateText(path(), "{\"event\":\"half");
    record(eventOf("start"));
    ASSERT_EQ(lines().size(), 2U);
    EXPECT_EQ(lastLine()["event"], "start");
}

TEST_F(AuditLogTest, writesNoPartOfLineThatDoesNotFit) {
    record(eventOf("start"));
    const std::string before = readText(path());
    const ChildResult result = runInChild([&before] {
        const ScopedFileSizeLimit limit(before.size() + 10);
        return codeOf([] { record(eventOf("end")); }) == AUDIT_NOT_WRITTEN ? 0 : 1;
    });
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(readText(path()), before);
}

TEST_F(AuditLogTest, servesThreadsInOrder) {
    std::optional<AuditLog> log(std::in_place, 0);
    std::vector<std::thread> threads;
    for (const char* name : {"start", "login", "logout"}) {
        threads.emplace_back([name] { record(eventOf(name)); });
        ASSERT_TRUE(happensInTime([&] { return Turn::waiting() == threads.size(); }));
    }
    log.reset();
    record(eventOf("end"));
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<std::string> names;
    for (const std::string& line : lines()) {
        names.push_back(JSON::parse(line)["event"]);
    }
    EXPECT_THAT(names, testing::ElementsAre("start", "login", "logout", "end"));
}

TEST_F(AuditLogTest, reportsTurnTimeout) {
    const Turn first(Deadline(5000));
    std::thread([] {
        EXPECT_EQ(codeOf([] { Turn second(Deadline(10)); }), AUDIT_NOT_WRITTEN);
    }).join();
    EXPECT_EQ(Turn::waiting(), 0U);
}

TEST_F(AuditLogTest, reservesSpaceInAdvance) {
    const std::size_t moreThanThereIs = std::size_t(1) << 62;
    EXPECT_EQ(codeOf([] { AuditLog log(moreThanThereIs); }), AUDIT_NOT_WRITTEN);
    EXPECT_EQ(codeOf([] { AuditLog log(1000); }), 0);
}

TEST_F(AuditLogTest, rotatesFullFile) {
    writePrivateText(path(), std::string(1024 * 1024, 'x') + "\n");
    for (int number = 1; number <= 15; ++number) {
        writePrivateText(path() + "." + std::to_string(number), std::to_string(number));
    }
    record(eventOf("start"));
    EXPECT_EQ(lines().size(), 1U);
    EXPECT_EQ(readText(path() + ".1").size(), 1024U * 1024 + 1);
    EXPECT_EQ(readText(path() + ".2"), "1");
    EXPECT_EQ(readText(path() + ".15"), "14");
    EXPECT_FALSE(exists(path() + ".16"));
}

TEST_F(AuditLogTest, keepsConcurrentLinesWhole) {
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([] {
            for (int i = 0; i < 25; ++i) {
                record(eventOf("login"));
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    const std::vector<std::string> all = lines();
    EXPECT_EQ(all.size(), 100U);
    for (const std::string& line : all) {
        EXPECT_TRUE(JSON::accept(line)) << line;
    }
}

TEST_F(AuditLogTest, locksOutOtherWriters) {
    std::thread other;
    {
        AuditLog log(0);
        other = std::thread([] { record(eventOf("login")); });
        log.append(eventOf("first"));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        log.append(eventOf("second"));
    }
    other.join();
    const std::vector<std::string> all = lines();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(JSON::parse(all[0])["event"], "first");
    EXPECT_EQ(JSON::parse(all[1])["event"], "second");
}

TEST_F(AuditLogTest, countsFloodOfRefusals) {
    for (int i = 0; i < 50; ++i) {
        recordRefusal(eventOf("refusal"));
    }
    EXPECT_EQ(lines().size(), 10U);
    // Moves the start of the period back, as if the minute had passed.
    std::string counts = readText(boardFile("/var/log/audit.counts"));
    JSON saved = JSON::parse(counts);
    saved[""]["start"] = saved[""]["start"].get<long>() - 60;
    writePrivateText(boardFile("/var/log/audit.counts"), saved.dump());
    record(eventOf("login"));
    ASSERT_EQ(lines().size(), 12U);
    EXPECT_EQ(JSON::parse(lines()[10])["event"], "anonymous");
    EXPECT_EQ(JSON::parse(lines()[10])["counts"]["refusal"], 40);
}

TEST_F(AuditLogTest, tracesRefusalThatCannotBeRecorded) {
    ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
    recordRefusal(eventOf("refusal"));
    EXPECT_THAT(readText(boardFile("/var/log/trace.log")),
                testing::HasSubstr("A refusal cannot be written to the audit log"));
}

TEST_F(AuditLogTest, sendsLineToSystemLog) {
    const std::string socketPath = boardFile("/var/run/log");
    const int receiver = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(::bind(receiver, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    writeText(boardFile("/var/run/board_properties"),
              "max_partitions=1\nsyslog_socket=" + socketPath + "\n");
    record(eventOf("start"));
    char message[1024] = {};
    EXPECT_GT(::recv(receiver, message, sizeof message - 1, 0), 0);
    ::close(receiver);
    EXPECT_EQ(std::string(message), "<85>efi_audit: " + lines().at(0));
}

TEST_F(AuditLogTest, namesBoardInEveryLine) {
    writeText(boardFile("/var/run/board_properties"), "max_partitions=1\nname=Rack 4 \"east\"\n");
    record(eventOf("start"));
    EXPECT_EQ(lastLine()["board"], "Rack 4 \"east\"");
    writeText(boardFile("/var/run/board_properties"), "max_partitions=1\n");
    record(eventOf("start"));
    EXPECT_FALSE(lastLine().contains("board"));
}

TEST_F(AuditLogTest, writesLineIfBoardNameIsUnreadable) {
    ASSERT_EQ(::mkdir(boardFile("/var/run/board_properties").c_str(), 0700), 0);
    record(eventOf("start"));
    EXPECT_EQ(lastLine()["event"], "start");
}

TEST_F(AuditLogTest, ignoresMissingSystemLog) {
    writeText(boardFile("/var/run/board_properties"),
              "max_partitions=1\nsyslog_socket=/no/such/socket\n");
    record(eventOf("start"));
    EXPECT_EQ(lines().size(), 1U);
}

TEST(AuditedFile, describesEncodedBytes) {
    ConfigurationFile file;
    file.saveTime = 1236384000;
    file.partition = 3;
    file.version = "1.23 B";
    file.payload = {'x'};
    const std::vector<unsigned char> bytes = encode(file);
    const std::optional<AuditedFile> audited = auditedFile(bytes);
    ASSERT_TRUE(audited);
    EXPECT_EQ(audited->sha256, sha256Hex(bytes));
    EXPECT_EQ(audited->partition, 3U);
    EXPECT_EQ(audited->version, "1.23 B");
    EXPECT_EQ(audited->saved, 1236384000U);
    EXPECT_FALSE(auditedFile({'x'}));
}

TEST_F(AuditLogTest, describesStoredFile) {
    ConfigurationFile file;
    file.version = "1.23 B";
    file.payload.assign(100000, 'x');
    const std::vector<unsigned char> bytes = encode(file);
    const std::string stored = boardFile("/var/tmp/file");
    writeText(stored, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const std::optional<AuditedFile> audited = auditedFileAt(stored);
    ASSERT_TRUE(audited);
    EXPECT_EQ(audited->sha256, sha256Hex(bytes));
    EXPECT_EQ(audited->version, "1.23 B");
    writeText(stored, "x");
    EXPECT_FALSE(auditedFileAt(stored));
    EXPECT_EQ(codeOf([] { auditedFileAt(boardFile("/var/tmp/none")); }), FILE_NOT_READABLE);
}

}  // namespace VeskLib::Test
