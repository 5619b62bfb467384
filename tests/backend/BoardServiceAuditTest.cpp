#include "platform/host/base/sha256.h"
#include "tests/backend/support/BoardServiceTest.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedLimit.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace VeskLib::Test {

using JSON = nlohmann::json;

namespace {

class BoardServiceAuditTest : public BoardServiceTest {
protected:
    static std::string logPath() { return boardFile("/var/log/audit.log"); }

    static std::vector<JSON> events() {
        std::vector<JSON> all;
        for (const std::string& line :
             exists(logPath()) ? linesOf(readText(logPath())) : std::vector<std::string>()) {
            all.push_back(JSON::parse(line));
        }
        return all;
    }

    static void breakLog() { ASSERT_EQ(::mkfifo(logPath().c_str(), 0600), 0); }

    static std::string sumOf(const std::string& text) {
        return sha256Hex(Bytes(text.begin(), text.end()));
    }

    static RequestFrame change(unsigned int number, const Bytes& payload) {
        return {RequestKind::SET, number, SESSION, payload, "192.0.2.1", "7-9"};
    }

    // Returns the code of a change, from 1500 to 1700, while files are limited to `limit` bytes.
    unsigned int codeWithin(std::size_t limit, const RequestFrame& request) const {
        const ChildResult result = runInChild([&] {
            const ScopedFileSizeLimit fileSizeLimit(limit);
            return static_cast<int>(ask(request).errorCode) - 1500;
        });
        EXPECT_GE(result.exitStatus, 0) << result.errors;
        return static_cast<unsigned int>(result.exitStatus + 1500);
    }

    void takeRights(const std::string& functions) { board.users.at(0).rights = {false, functions}; }
};

}  // namespace

TEST_F(BoardServiceAuditTest, restoreIsRecordedBeforeAndAfterTheChange) {
    stage(makeFile("1.0", "new"));
    ASSERT_EQ(ask(change(VeskUi::SET_RESTORE, {0, 3, 3, 0, 3})).errorCode, 0U);
    const std::vector<JSON> lines = events();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["result"], "begun");
    EXPECT_EQ(lines[1]["result"], "done");
    for (JSON line : lines) {
        EXPECT_EQ(line["event"], "restore");
        EXPECT_EQ(line["user"], "admin");
        EXPECT_EQ(line["session"], SESSION);
        EXPECT_EQ(line["address"], "192.0.2.1");
        EXPECT_EQ(line["request"], "7-9");
        EXPECT_EQ(line["partitions"], JSON({3, 0, 3}));
        EXPECT_EQ(line["file"]["sha256"], sha256Hex(encode(makeFile("1.0", "new"))));
        EXPECT_EQ(line["file"]["partition"], 77);
        EXPECT_EQ(line["before"], JSON({{"0", sumOf("zero")}, {"3", sumOf("three")}}));
        EXPECT_EQ(line["after"], JSON({{"0", sumOf("new")}, {"3", sumOf("new")}}));
        EXPECT_FALSE(line.contains("code"));
    }
}

TEST_F(BoardServiceAuditTest, backupIsRecordedOnce) {
    ASSERT_EQ(ask(change(VeskUi::SET_BACKUP, {0, 0, 0, 1})).errorCode, 0U);
    ASSERT_EQ(events().size(), 1U);
    const JSON line = events()[0];
    EXPECT_EQ(line["event"], "backup");
    EXPECT_EQ(line["result"], "done");
    EXPECT_EQ(line["partitions"], JSON({1}));
    EXPECT_EQ(line["file"]["sha256"], sha256Hex(readBytes(backupPath)));
}

TEST_F(BoardServiceAuditTest, everyRefusalIsRecordedWithItsCode) {
    const struct {
        RequestFrame request;
        unsigned int code;
    } cases[] = {
        {change(VeskUi::SET_BACKUP, {0, 0, 0, 5}), BACKEND_NO_PARTITION},
        {change(VeskUi::SET_BACKUP, {}), BACKEND_MALFORMED_REQUEST},
        {change(VeskUi::SET_RESTORE, {0, 0}), BACKEND_NO_TARGETS},
        {change(VeskUi::SET_RESTORE, {0, 1, 4}), BACKEND_FILE_UNUSABLE},
        {{RequestKind::SET, VeskUi::SET_RESTORE, "fedcba9876543210", {0, 1, 0}},
         BACKEND_NO_SESSION},
    };
    std::size_t count = 0;
    for (const auto& [request, code] : cases) {
        EXPECT_EQ(ask(request).errorCode, code);
        ASSERT_EQ(events().size(), ++count);
        EXPECT_EQ(events().back()["result"], "refused");
        EXPECT_EQ(events().back()["code"], code);
        EXPECT_EQ(events().back().contains("user"), code != BACKEND_NO_SESSION);
    }
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceAuditTest, userWithoutRightIsRefused) {
    stage(makeFile("1.0", "new"));
    takeRights(",106,");
    EXPECT_EQ(backup(0), BACKEND_NOT_ALLOWED);
    EXPECT_EQ(events().back()["user"], "admin");
    EXPECT_EQ(events().back()["code"], BACKEND_NOT_ALLOWED);
    EXPECT_FALSE(exists(backupPath));
    takeRights(",105,");
    EXPECT_EQ(restore({0}), BACKEND_NOT_ALLOWED);
    EXPECT_EQ(allConfigurations(), initial);
    takeRights("");
    EXPECT_EQ(backup(0), BACKEND_NOT_ALLOWED);
    EXPECT_EQ(restore({0}), BACKEND_NOT_ALLOWED);
    EXPECT_EQ(events().size(), 4U);
}

TEST_F(BoardServiceAuditTest, sessionOfUnknownUserIsRefused) {
    board.users.at(0).name = "another";
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(backup(0), BACKEND_NO_SESSION);
    EXPECT_EQ(restore({0}), BACKEND_NO_SESSION);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceAuditTest, expiredSessionIsRefused) {
    const std::string path = boardFile(std::string("/var/lib/session/") + SESSION);
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(backup(0), BACKEND_NO_SESSION);
    EXPECT_TRUE(exists(path));
}

TEST_F(BoardServiceAuditTest, changesNothingWhenLogIsUnusable) {
    breakLog();
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(restore({0}), BACKEND_NOT_RECORDED);
    EXPECT_EQ(allConfigurations(), initial);
    writeText(backupPath, "an earlier one");
    EXPECT_EQ(backup(0), BACKEND_NOT_RECORDED);
    EXPECT_FALSE(exists(backupPath));
}

TEST_F(BoardServiceAuditTest, changesNothingWhenFirstRecordFails) {
    stage(makeFile("1.0", "new"));
    RequestFrame request = change(VeskUi::SET_RESTORE, {0, 1, 0});
    request.address.assign(60000, 'x');
    EXPECT_EQ(codeWithin(50000, request), BACKEND_NOT_RECORDED);
    EXPECT_EQ(allConfigurations(), initial);
    EXPECT_EQ(events().size(), 0U);
}

TEST_F(BoardServiceAuditTest, reportsRestoreWithUnrecordedOutcome) {
    stage(makeFile("1.0", "new"));
    RequestFrame request = change(VeskUi::SET_RESTORE, {0, 1, 0});
    request.address.assign(60000, 'x');  // one line fits, a second does not
    EXPECT_EQ(codeWithin(100000, request), BACKEND_OUTCOME_NOT_RECORDED);
    EXPECT_EQ(configurationOf(0), "new");
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0]["result"], "begun");
}

TEST_F(BoardServiceAuditTest, recordsOutcomeOfAbandonedRestore) {
    stage(makeFile("1.0", "new"));
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches;
    BoardService service(board, store, switches, lockPath);
    service.answer(change(VeskUi::SET_RESTORE, {0, 1, 0}), [] { return false; });
    ASSERT_EQ(events().size(), 2U);
    EXPECT_EQ(events()[0]["result"], "begun");
    EXPECT_EQ(events()[1]["result"], "refused");
    EXPECT_EQ(events()[1]["code"], BACKEND_ABANDONED);
}

TEST_F(BoardServiceAuditTest, recordsOutcomeOfFailedRestore) {
    stage(makeFile("1.0", "new"));
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches;
    BoardService service(board, store, switches, lockPath);
    std::filesystem::rename(at("state"), at("away"));
    service.answer(change(VeskUi::SET_RESTORE, {0, 1, 0}));
    ASSERT_EQ(events().size(), 2U);
    EXPECT_EQ(events()[0]["result"], "begun");
    EXPECT_EQ(events()[1]["result"], "failed");
    EXPECT_EQ(events()[1]["code"], BACKEND_NOT_STORED);
}

TEST_F(BoardServiceAuditTest, recordsFaultOrderBeforeItTakesEffect) {
    const std::string order = "slow 1 1";
    const RequestFrame request = {RequestKind::CONTROL, 0, "", Bytes(order.begin(), order.end())};
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches(true);
    BoardService service(board, store, switches, lockPath);
    EXPECT_EQ(service.answer(request).errorCode, 0U);
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0]["event"], "fault_order");
    EXPECT_EQ(events()[0]["order"], order);
    std::filesystem::remove(logPath());
    breakLog();
    EXPECT_EQ(service.answer(request).errorCode, BACKEND_NOT_RECORDED);
}

TEST_F(BoardServiceAuditTest, doesNotRecordLogin) {
    login("tYpedPassword", "pAssword");
    EXPECT_EQ(events().size(), 0U);
}

}  // namespace VeskLib::Test
