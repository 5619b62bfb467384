#include "tests/backend/support/BoardServiceTest.h"

#include "data/HardInstallInfoPacket.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>

namespace VeskLib::Test {

TEST_F(BoardServiceTest, returnsPartitionsOfBoard) {
    const ReplyFrame reply = ask({RequestKind::GET, VeskUi::GET_PARTITION_INFO, "", {}});
    EXPECT_EQ(reply.errorCode, 0U);
    VeskUi::PartitionInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, reply.payload));
    EXPECT_TRUE(packet.isInstalled(0));
    EXPECT_TRUE(packet.isInstalled(4));
    EXPECT_FALSE(packet.isInstalled(5));
    EXPECT_EQ(packet.getPartitionName(3), "Partition 3");
    std::vector<unsigned char> ids;
    packet.getNodeIds(3, ids);
    EXPECT_EQ(ids, (Bytes{0x21, 3}));
}

TEST_F(BoardServiceTest, returnsHardwareOfBoard) {
    board.ioBoards[1] = true;
    board.gspBoards[15] = true;
    const ReplyFrame reply = ask({RequestKind::GET, VeskUi::GET_HARD_INSTALL_INFO, "", {}});
    EXPECT_EQ(reply.errorCode, 0U);
    VeskUi::HardInstallInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, reply.payload));
    for (int number = 0; number < 16; ++number) {
        EXPECT_EQ(packet.isInstalled(0, number), number < 5) << number;
        EXPECT_EQ(packet.isHome(0, number, 0), number < 5 && number != 3) << number;
        EXPECT_EQ(packet.isInstalled(1, number), number == 1) << number;
        EXPECT_EQ(packet.isInstalled(2, number), number == 15) << number;
    }
}

TEST_F(BoardServiceTest, returnsVersionsOfBoard) {
    const ReplyFrame reply = ask({RequestKind::GET, VeskUi::GET_VERSION_INFO, "", {}});
    EXPECT_EQ(reply.errorCode, 0U);
    VeskUi::VersionInfoPacket packet;
    ASSERT_TRUE(deserialize(packet, reply.payload));
    EXPECT_EQ(packet.getBIOSVersion(0, 0), "1.23 B");
    EXPECT_EQ(packet.getBIOSVersion(3, 0), "7.7");
    EXPECT_EQ(packet.getBIOSVersion(15, 0), "-");
}

TEST_F(BoardServiceTest, unknownRequestIsRefused) {
    for (const unsigned int number : {0U, 0x020100A3U, 0x02010030U, 0xFFFFFFFFU}) {
        EXPECT_EQ(code(RequestKind::GET, number, {}), BACKEND_UNKNOWN_REQUEST) << number;
    }
    for (const unsigned int number : {0U, 0x0201002FU, 0x020100A5U}) {
        EXPECT_EQ(code(RequestKind::SET, number, {}), BACKEND_UNKNOWN_REQUEST) << number;
    }
}

TEST_F(BoardServiceTest, malformedPayloadIsRefused) {
    EXPECT_EQ(code(RequestKind::GET, VeskUi::GET_PARTITION_INFO, {0}), BACKEND_MALFORMED_REQUEST);
    for (const Bytes& payload : {Bytes{}, {0}, {0, 0, 0}, {0, 0, 0, 0, 0}}) {
        EXPECT_EQ(code(RequestKind::SET, VeskUi::SET_BACKUP, payload), BACKEND_MALFORMED_REQUEST)
            << payload.size();
    }
    for (const Bytes& payload : {Bytes{}, {0}, {0, 1}, {0, 2, 0}, {0, 1, 0, 0}, {0, 0, 0}}) {
        EXPECT_EQ(code(RequestKind::SET, VeskUi::SET_RESTORE, payload), BACKEND_MALFORMED_REQUEST)
            << payload.size();
    }
    for (const Bytes& payload : {Bytes{}, {0, 1}, {0, 1, 'a'}, {0, 0, 0, 0, 0, 0}}) {
        EXPECT_EQ(code(RequestKind::LOGIN, 0, payload), BACKEND_MALFORMED_REQUEST)
            << payload.size();
    }
}

TEST_F(BoardServiceTest, changeWithoutASessionIsRefused) {
    stage(makeFile("1.0", "new"));
    for (const char* session : {"", "0123456789abcde", "0123456789abcdeF", "../../etc/passwd",
                                "0123456789abcdef-00112233445566778899aabbccddeeff"}) {
        EXPECT_EQ(code(RequestKind::SET, VeskUi::SET_BACKUP, {0, 0, 0, 0}, session),
                  BACKEND_NO_SESSION);
        EXPECT_EQ(code(RequestKind::SET, VeskUi::SET_RESTORE, {0, 1, 0}, session),
                  BACKEND_NO_SESSION);
    }
    EXPECT_EQ(allConfigurations(), initial);
}

TEST_F(BoardServiceTest, backupWritesFileOfPartition) {
    const std::time_t before = std::time(nullptr);
    ASSERT_EQ(backup(1), 0U);
    const std::time_t after = std::time(nullptr);
    ConfigurationFile file;
    ASSERT_TRUE(decode(readBytes(backupPath), file));
    EXPECT_EQ(file.partition, 1U);
    EXPECT_EQ(file.version, "1.9");
    EXPECT_EQ(file.partitionName, "Partition 1");
    EXPECT_EQ(file.payload, (Bytes{'o', 'n', 'e'}));
    EXPECT_GE(file.saveTime, before);
    EXPECT_LE(file.saveTime, after);
    struct stat status = {};
    ASSERT_EQ(::stat(backupPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
}

TEST_F(BoardServiceTest, backupReplacesLinkNotItsTarget) {
    writeText(at("precious"), "untouched");
    ASSERT_EQ(::symlink("precious", backupPath.c_str()), 0);
    ASSERT_EQ(backup(4), 0U);  // running partitions can be backed up
    EXPECT_EQ(readText(at("precious")), "untouched");
    ConfigurationFile file;
    EXPECT_TRUE(decode(readBytes(backupPath), file));
}

TEST_F(BoardServiceTest, backupWithoutHomeBoardHasUnknownVersion) {
    ASSERT_EQ(backup(3), 0U);
    ConfigurationFile file;
    ASSERT_TRUE(decode(readBytes(backupPath), file));
    EXPECT_EQ(file.version, "-");
}

TEST_F(BoardServiceTest, backupOfMissingPartitionIsRefused) {
    EXPECT_EQ(backup(5), BACKEND_NO_PARTITION);
    EXPECT_EQ(backup(6), BACKEND_NO_PARTITION);
    EXPECT_EQ(code(RequestKind::SET, VeskUi::SET_BACKUP, {0xFF, 0xFF, 0xFF, 0xFF}),
              BACKEND_NO_PARTITION);
    EXPECT_FALSE(exists(backupPath));
}

TEST_F(BoardServiceTest, backupThatCannotBeStoredIsRefused) {
    std::filesystem::create_directory(backupPath);
    EXPECT_EQ(backup(0), BACKEND_NOT_STORED);
}

// A partition's name may have grown since it got its configuration.
TEST_F(BoardServiceTest, oversizedBackupIsRefused) {
    board.partitions[0].initialPayload.assign(LARGEST_CONFIGURATION_FILE, 'x');
    EXPECT_EQ(backup(0), BACKEND_CONFIGURATION_SIZE);
    EXPECT_FALSE(exists(backupPath));
}

TEST_F(BoardServiceTest, rightPasswordIsAccepted) {
    EXPECT_EQ(login("admin", "secret").errorCode, 0U);
    EXPECT_EQ(login("root", "secret").errorCode, 0U);
}

TEST_F(BoardServiceTest, wrongNameAndWrongPasswordReturnSameCode) {
    EXPECT_EQ(login("admin", "wrong").errorCode, BACKEND_LOGIN_REFUSED);
    EXPECT_EQ(login("nobody", "secret").errorCode, BACKEND_LOGIN_REFUSED);
}

TEST_F(BoardServiceTest, knownBrowserLogsInWhenAddressIsExhausted) {
    ConfigurationStore store(at("state/configurations"), board);
    FaultSwitches switches;
    BoardService service(board, store, switches, lockPath);
    const auto loginFrom = [&](const char* user, const char* password, const std::string& device) {
        const Bytes payload = encode(LoginRequest{user, password, "192.0.2.1", device});
        const ReplyFrame reply = service.answer({RequestKind::LOGIN, 0, "", payload});
        LoginAnswer answer;
        EXPECT_TRUE(reply.errorCode != 0 || decode(reply.payload, answer));
        return std::pair(reply.errorCode, answer.device);
    };
    const std::string device = loginFrom("admin", "secret", "").second;
    EXPECT_EQ(device.size(), 32U);
    for (int i = 0; i < LoginQueue::ADDRESS_ATTEMPTS; ++i) {
        EXPECT_EQ(loginFrom("admin", "wrong", "").first, BACKEND_LOGIN_REFUSED);
    }
    EXPECT_EQ(loginFrom("admin", "secret", device), std::pair(0U, std::string()));
    // The device is unknown for another user, who gets a new one instead of the one that was sent.
    const std::string others = loginFrom("root", "secret", device).second;
    EXPECT_EQ(others.size(), 32U);
    EXPECT_NE(others, device);
    service.end();
    EXPECT_EQ(loginFrom("admin", "secret", "").first, BACKEND_LOGIN_TOO_SOON);
}

TEST_F(BoardServiceTest, faultOrdersAreRefusedByDefault) {
    EXPECT_EQ(code(RequestKind::CONTROL, 0, {'s', 't', 'a', 't', 'u', 's'}),
              BACKEND_FAULTS_NOT_ALLOWED);
    EXPECT_EQ(code(RequestKind::CONTROL, 0, {}), BACKEND_FAULTS_NOT_ALLOWED);
}

TEST_F(BoardServiceTest, logsReasonOfRefusalButNoCredentials) {
    testing::internal::CaptureStderr();
    login("tYpedPassword", "pAssword");
    login("admin", "pAssword");
    backup(5);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "efi_backend: login refused with 1607: wrong name or password\n"
              "efi_backend: login refused with 1607: wrong name or password\n"
              "efi_backend: request 0x020100A3 refused with 1602: there is no partition 5\n");
}

}  // namespace VeskLib::Test
