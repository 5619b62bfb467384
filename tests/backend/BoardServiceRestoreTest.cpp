#include "tests/backend/support/BoardServiceTest.h"

#include "platform/host/base/sha256.h"
#include "platform/host/channel/refusalPayload.h"
#include "platform/host/storage/obtainLock.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace VeskLib::Test {

TEST_F(BoardServiceTest, restoreReplacesOnlyPayloadOfTargets) {
    stage(makeFile("1.0", "new"));
    ASSERT_EQ(restore({0, 1, 3}), 0U);
    EXPECT_EQ(allConfigurations(), "new;new;two;new;four;;");
    EXPECT_TRUE(exists(stagingPath));

    // The target keeps its number, name and version.
    ASSERT_EQ(backup(1), 0U);
    ConfigurationFile file;
    ASSERT_TRUE(decode(readBytes(backupPath), file));
    EXPECT_EQ(file.partition, 1U);
    EXPECT_EQ(file.partitionName, "Partition 1");
    EXPECT_EQ(file.version, "1.9");
    EXPECT_EQ(file.payload, (Bytes{'n', 'e', 'w'}));
}

TEST_F(BoardServiceTest, backupCanBeRestored) {
    ASSERT_EQ(backup(0), 0U);
    std::filesystem::rename(backupPath, stagingPath);
    ASSERT_EQ(restore({1}), 0U);
    EXPECT_EQ(allConfigurations(), "zero;zero;two;three;four;;");
}

TEST_F(BoardServiceTest, repeatedTargetCountsOnce) {
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(restore({1, 1, 1}), 0U);
    EXPECT_EQ(allConfigurations(), "zero;new;two;three;four;;");
}

TEST_F(BoardServiceTest, oneUnsuitableTargetRefusesWholeRestore) {
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(restore({0, 1, 4}), BACKEND_PARTITION_RUNNING);
    EXPECT_EQ(restore({0, 1, 2}), BACKEND_VERSION_DIFFERS);
    EXPECT_EQ(restore({0, 1, 5}), BACKEND_NO_PARTITION);
    EXPECT_EQ(restore({255, 1}), BACKEND_NO_PARTITION);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, comparesOnlyMajorVersion) {
    const struct {
        const char* fileVersion;
        unsigned int code;  // against "1.23 B"
    } cases[] = {
        {"1", 0},
        {"1.", 0},
        {"1.99", 0},
        {"-", 0},
        {"-1.0", 0},
        {"", BACKEND_VERSION_DIFFERS},
        {"10.23", BACKEND_VERSION_DIFFERS},
        {"01.23", BACKEND_VERSION_DIFFERS},
        {"1 .23", BACKEND_VERSION_DIFFERS},
        {"2.0", BACKEND_VERSION_DIFFERS},
    };
    for (const auto& [fileVersion, expected] : cases) {
        stage(makeFile(fileVersion, "new"));
        EXPECT_EQ(restore({0}), expected) << fileVersion;
    }
    // A target with an unknown version accepts any file.
    stage(makeFile("99.0", "any"));
    EXPECT_EQ(restore({3}), 0U);
}

TEST_F(BoardServiceTest, restoreToNoTargetsIsRefused) {
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(restore({}), BACKEND_NO_TARGETS);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, unusableStagedFileIsRefused) {
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);

    Bytes bytes = encode(makeFile("1.0", "new"));
    bytes.back() ^= 1;
    writeBytes(stagingPath, bytes);
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);

    writeText(stagingPath, "");
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);

    std::filesystem::remove(stagingPath);
    writeBytes(at("elsewhere"), encode(makeFile("1.0", "new")));
    ASSERT_EQ(::symlink("elsewhere", stagingPath.c_str()), 0);
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);

    std::filesystem::remove(stagingPath);
    ASSERT_EQ(::mkfifo(stagingPath.c_str(), 0600), 0);
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, doesNotUseFileOfAnotherSession) {
    writeBytes(at("restored_eficonfffffffffffffffff"), encode(makeFile("1.0", "new")));
    EXPECT_EQ(restore({0}), BACKEND_FILE_UNUSABLE);
}

// A configuration from a partition with a short name may be too large for one with a long name.
TEST_F(BoardServiceTest, configurationTooLargeForTargetIsRefused) {
    ConfigurationFile file;
    file.version = "1";
    file.payload.assign(LARGEST_CONFIGURATION_FILE - 32 - file.version.size(), 'x');
    stage(file);
    EXPECT_EQ(restore({0}), BACKEND_CONFIGURATION_SIZE);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, concurrentRestoreIsRefused) {
    stage(makeFile("1.0", "new"));
    const int lock = obtainLock(lockPath, 0);
    EXPECT_EQ(restore({0}), BACKEND_RESTORE_BUSY);
    EXPECT_EQ(backup(0), 0U);
    EXPECT_EQ(allConfigurations(), initial);
    ::close(lock);
    EXPECT_EQ(restore({0}), 0U);
}

TEST_F(BoardServiceTest, restoresOnlyFileThatThePageShowed) {
    const ConfigurationFile shown = makeFile("1.0", "shown");
    const std::string name = sha256Hex(encode(shown));
    RequestFrame request = {RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 1, 0}};
    stage(makeFile("1.0", "other"));
    for (const std::string& wrong : {name, name + "0", name.substr(1), std::string("x")}) {
        request.stagedFile = wrong;
        EXPECT_EQ(ask(request).errorCode, BACKEND_OTHER_FILE) << wrong;
        EXPECT_EQ(allConfigurations(), initial);
    }
    stage(shown);
    request.stagedFile = name;
    EXPECT_EQ(ask(request).errorCode, 0U);
    EXPECT_EQ(configurationOf(0), "shown");
}

TEST_F(BoardServiceTest, refusalNamesEveryUnsuitablePartition) {
    const auto refusedBy = [this](const Bytes& targets) {
        Bytes payload = {0, static_cast<unsigned char>(targets.size())};
        payload.insert(payload.end(), targets.begin(), targets.end());
        const ReplyFrame reply = ask({RequestKind::SET, VeskUi::SET_RESTORE, SESSION, payload});
        RefusalDetails details;
        EXPECT_EQ(decode(reply.payload, details), !reply.payload.empty());
        std::string text = std::to_string(reply.errorCode) + " " + details.fileVersion;
        for (const RefusalDetails::Partition& partition : details.partitions) {
            text += " " + std::to_string(partition.number) + ":" + partition.version;
        }
        return text;
    };
    board.partitions[1].running = true;
    stage(makeFile("1.0", "new"));
    EXPECT_EQ(refusedBy({4, 0, 1}), "1549  1: 4:");
    EXPECT_EQ(refusedBy({0, 2, 4}), "1551 1.0 2:2.0");
    EXPECT_EQ(refusedBy({0, 200, 5}), "1602  5: 200:");
    EXPECT_EQ(refusedBy({}), "1601 ");
}

TEST_F(BoardServiceTest, abandonedRestoreChangesNothing) {
    stage(makeFile("1.0", "new"));
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches;
    BoardService service(board, store, switches, lockPath);
    const RequestFrame request = {RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 1, 0}};
    EXPECT_EQ(service.answer(request, [] { return false; }).errorCode, BACKEND_ABANDONED);
    EXPECT_EQ(allConfigurations(), initial);
    EXPECT_EQ(namesIn(at("state")), std::vector<std::string>{"configurations"});

    // The callback runs last, when only the rename of the new file is left to do.
    std::size_t files = 0;
    const auto look = [&] {
        files = namesIn(at("state")).size();
        return true;
    };
    EXPECT_EQ(service.answer(request, look).errorCode, 0U);
    EXPECT_EQ(files, 2U);
    EXPECT_EQ(configurationOf(0), "new");
}

TEST_F(BoardServiceTest, unusableLockRefusesRestore) {
    stage(makeFile("1.0", "new"));
    std::filesystem::create_directory(lockPath);
    EXPECT_EQ(restore({0}), BACKEND_NOT_STORED);
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, restoreThatCannotBeStoredIsRefused) {
    stage(makeFile("1.0", "new"));
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches;
    BoardService service(board, store, switches, lockPath);
    std::filesystem::rename(at("state"), at("away"));
    const ReplyFrame reply =
        service.answer({RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 2, 0, 1}});
    std::filesystem::rename(at("away"), at("state"));
    EXPECT_EQ(reply.errorCode, BACKEND_NOT_STORED);
    EXPECT_EQ(store.read(0), (Bytes{'z', 'e', 'r', 'o'}));
    EXPECT_EQ(allConfigurations(), initial);
}

}  // namespace VeskLib::Test
