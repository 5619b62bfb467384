#include "data/requestNumbers.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/BackendProcess.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"
#include "tests/support/BoardTest.h"
#include "tests/support/happensInTime.h"
#include "tests/support/sessions.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

namespace VeskLib::Test {

using namespace Host;

namespace {

// The daemon on the demo board; each test has a root of its own.
class BackendTest : public RootTest {
protected:
    BackendTest() { writeSession(COOKIE, "admin"); }

    static int ask(const RequestFrame& request, ReplyFrame& reply) {
        Channel channel(LONG);
        return channel.exchange(request, reply);
    }

    static int set(unsigned int number, const Bytes& payload,
                   const std::string& session = SESSION) {
        ReplyFrame reply;
        return ask({RequestKind::SET, number, session, payload}, reply);
    }

    static int backup(unsigned char partition) {
        return set(VeskUi::SET_BACKUP, {0, 0, 0, partition});
    }

    static int restore(const Bytes& targets) {
        Bytes payload = {0, static_cast<unsigned char>(targets.size())};
        payload.insert(payload.end(), targets.begin(), targets.end());
        return set(VeskUi::SET_RESTORE, payload);
    }

    // Backs up a partition and returns the file.
    static ConfigurationFile backedUp(unsigned char partition) {
        ConfigurationFile file;
        EXPECT_EQ(backup(partition), 0);
        EXPECT_TRUE(decode(readBytes(at(std::string("efi_backup") + SESSION)), file));
        return file;
    }

    static void stage(const std::string& version, const Bytes& payload) {
        ConfigurationFile file;
        file.version = version;
        file.payload = payload;
        writeBytes(at(std::string("restored_eficonf") + SESSION), encode(file));
    }

    static std::string root() { return boardFile(""); }

    // Starts a daemon that must fail. Checks that it prints one line, and returns that line without
    // the program's name.
    static std::string whyNotStarted(const std::string& onRoot, const std::string& boardPath) {
        BackendProcess backend(onRoot, boardPath);
        if (backend.waitUntilReady()) {
            ADD_FAILURE() << "the back-end starts on " << onRoot;
            return "";
        }
        EXPECT_EQ(backend.waitForEnd(), 1);
        const std::string errors = backend.errors();
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
        EXPECT_TRUE(errors.starts_with("efi_backend: ")) << errors;
        return errors.substr(13, errors.size() - 14);
    }
};

}  // namespace

TEST_F(BackendTest, startsServesAndStops) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    ReplyFrame reply;
    EXPECT_EQ(ask({RequestKind::GET, VeskUi::GET_PARTITION_INFO, SESSION, {}}, reply), 0);
    EXPECT_EQ(readText(boardFile(BOARD_PROPERTIES)),
              "max_partitions=8\nname=Demo board\nhost=127.0.0.1\nhost=[::1]\nhost=localhost\n"
              "user=0 ,105,106,110, admin\nuser=0 - viewer\n");
    EXPECT_EQ(backend.stop(SIGTERM), 0);
    EXPECT_EQ(backend.errors(), "");
    EXPECT_FALSE(exists(boardFile(BACKEND_SOCKET)));
}

TEST_F(BackendTest, publishesNamesForWebServer) {
    writePrivateText(at("board.toml"),
                     "name = \"Board 7\"\nmax_partitions = 8\nhost_names = [\"Board.Example\"]\n");
    BackendProcess backend({"--root", root(), "--board", at("board.toml"), "--host", "fe80::1",
                            "--host", "Other-name"});
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(readText(boardFile(BOARD_PROPERTIES)),
              "max_partitions=8\nname=Board 7\nhost=127.0.0.1\nhost=[::1]\nhost=localhost\n"
              "host=board.example\nhost=[fe80::1]\nhost=other-name\n");
    EXPECT_EQ(readText(boardFile(WEB_SERVER_HOSTS)),
              "var.hosts = \"^$|^(127\\.0\\.0\\.1|\\[::1\\]|localhost|board\\.example|"
              "\\[fe80::1\\]|other-name)(:[0-9]+)?$\"\n");
    for (const char* file : {BOARD_PROPERTIES, WEB_SERVER_HOSTS}) {
        struct stat status = {};
        ASSERT_EQ(::stat(boardFile(file).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0600U) << file;
    }
}

TEST_F(BackendTest, refusesInvalidHostOption) {
    for (const char* name : {"", "a b", "a:80", "a.", "a\"", "a|b", "http://a", "a/b"}) {
        BackendProcess backend({"--root", root(), "--board", DEMO_BOARD, "--host", name});
        EXPECT_FALSE(backend.waitUntilReady());
        EXPECT_EQ(backend.waitForEnd(), 2) << name;
    }
}

TEST_F(BackendTest, recordsItsStartAndEndWithConfigurations) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    stage("1.0", {'n', 'e', 'w'});
    ASSERT_EQ(restore({2}), 0);
    EXPECT_EQ(backend.stop(SIGTERM), 0);
    BackendProcess again(root(), DEMO_BOARD);
    ASSERT_TRUE(again.waitUntilReady());
    EXPECT_EQ(again.stop(SIGKILL), -SIGKILL);
    std::vector<nlohmann::json> lines;
    for (const std::string& line : linesOf(readText(boardFile("/var/log/audit.log")))) {
        lines.push_back(nlohmann::json::parse(line));
    }
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0]["event"], "start");
    EXPECT_EQ(lines[3]["event"], "end");
    EXPECT_EQ(lines[4]["event"], "start");  // and no end of the one that was killed
    EXPECT_EQ(lines[0]["after"]["2"], lines[1]["before"]["2"]);
    EXPECT_EQ(lines[4]["after"]["2"], lines[1]["after"]["2"]);
    EXPECT_EQ(lines[4]["after"]["3"], lines[0]["after"]["3"]);
    EXPECT_FALSE(lines[3].contains("after"));
}

TEST_F(BackendTest, servesReadsButRefusesChangesWithoutAuditLog) {
    ASSERT_EQ(::mkfifo(boardFile("/var/log/audit.log").c_str(), 0600), 0);
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    ReplyFrame reply;
    EXPECT_EQ(ask({RequestKind::GET, VeskUi::GET_PARTITION_INFO, SESSION, {}}, reply), 0);
    EXPECT_EQ(backup(3), static_cast<int>(BACKEND_NOT_RECORDED));
    EXPECT_EQ(backend.stop(SIGTERM), 0);
}

TEST_F(BackendTest, stopsOnInterrupt) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(backend.stop(SIGINT), 0);
}

TEST_F(BackendTest, createsMissingFolders) {
    std::filesystem::remove_all(boardFile("/var"));
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    writeSession(COOKIE, "admin");
    EXPECT_EQ(backup(3), 0);
    EXPECT_EQ(backend.stop(), 0);
}

TEST_F(BackendTest, backsUpAndRestores) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    const ConfigurationFile file = backedUp(3);
    EXPECT_EQ(file.partition, 3U);
    EXPECT_EQ(file.version, "1.23 B");
    EXPECT_NE(file.partitionName.find("<script>"), std::string::npos);
    const std::string start(file.payload.begin(), file.payload.begin() + 16);
    EXPECT_EQ(start, "Boot mode=UEFI\nB");

    stage(file.version, file.payload);
    EXPECT_EQ(restore({2, 5}), 0);
    EXPECT_EQ(backedUp(2).payload, file.payload);
    EXPECT_EQ(backedUp(5).payload, file.payload);
    EXPECT_EQ(backedUp(5).version, "-");
    EXPECT_EQ(backedUp(5).partitionName, "Spare");
}

TEST_F(BackendTest, refusesRestoreForEveryCause) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    const Bytes before = backedUp(3).payload;
    EXPECT_EQ(restore({3}), static_cast<int>(BACKEND_FILE_UNUSABLE));
    stage("1.23 B", {1, 2, 3});
    EXPECT_EQ(restore({3, 7}), static_cast<int>(BACKEND_PARTITION_RUNNING));
    EXPECT_EQ(restore({3, 0}), static_cast<int>(BACKEND_VERSION_DIFFERS));
    EXPECT_EQ(restore({3, 1}), static_cast<int>(BACKEND_NO_PARTITION));
    EXPECT_EQ(restore({}), static_cast<int>(BACKEND_NO_TARGETS));
    EXPECT_EQ(set(VeskUi::SET_RESTORE, {0, 1, 3}, ""), static_cast<int>(BACKEND_NO_SESSION));
    EXPECT_EQ(backedUp(3).payload, before);
    EXPECT_EQ(restore({3}), 0);
    EXPECT_EQ(backedUp(3).payload, (Bytes{1, 2, 3}));
}

TEST_F(BackendTest, largestDemoConfigurationFitsEveryFreePartition) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    const Bytes payload = backedUp(5).payload;
    stage("-", payload);
    EXPECT_EQ(restore({0, 2, 3, 5}), 0);
    for (const unsigned char partition : Bytes{0, 2, 3, 5}) {
        EXPECT_EQ(backedUp(partition).payload, payload) << static_cast<int>(partition);
    }
}

TEST_F(BackendTest, demoUsersLogIn) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    const auto login = [](const char* user, const char* password) {
        ReplyFrame reply;
        const Bytes payload = encode(LoginRequest{user, password, ""});
        return ask({RequestKind::LOGIN, 0, "", payload}, reply);
    };
    EXPECT_EQ(login("admin", "admin"), 0);
    EXPECT_EQ(login("viewer", "viewer"), 0);
    const int refused = BACKEND_LOGIN_REFUSED;
    EXPECT_EQ(login("admin", "Geheimnis"), refused);
    EXPECT_EQ(login("Geheimnis", "admin"), refused);
    EXPECT_EQ(backend.stop(), 0);
    EXPECT_EQ(backend.errors().find("Geheimnis"), std::string::npos) << backend.errors();
}

TEST_F(BackendTest, restoredConfigurationsSurviveRestart) {
    for (const int signal : {SIGTERM, SIGKILL}) {
        const Bytes payload = {'s', static_cast<unsigned char>(signal)};
        {
            BackendProcess backend(root(), DEMO_BOARD);
            ASSERT_TRUE(backend.waitUntilReady());
            stage("1", payload);
            EXPECT_EQ(restore({2, 3}), 0);
            EXPECT_EQ(backend.stop(signal), signal == SIGKILL ? -SIGKILL : 0);
        }
        BackendProcess backend(root(), DEMO_BOARD);
        ASSERT_TRUE(backend.waitUntilReady());
        EXPECT_EQ(backedUp(2).payload, payload);
        EXPECT_EQ(backedUp(3).payload, payload);
    }
}

TEST_F(BackendTest, doesNotRestoreForDisconnectedClient) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    stage("1", {'n', 'e', 'w'});
    const Bytes before = backedUp(3).payload;
    // Stopped until the client has disconnected.
    backend.signal(SIGSTOP);
    const int client = connectToBoard();
    sendBytes(client,
              framed(encode(RequestFrame{
                  RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 1, 3}, "::1", "7-9"})));
    ::close(client);
    backend.signal(SIGCONT);
    EXPECT_TRUE(happensInTime([] {
        return readText(boardFile("/var/log/audit.log")).find("\"code\":1616") != std::string::npos;
    }));
    EXPECT_EQ(backedUp(3).payload, before);
}

// Whenever the daemon is killed, all targets have the same configuration, and no partial file
// remains.
TEST_F(BackendTest, restoreIsAtomicWhenKilled) {
    for (int round = 0; round < 12; ++round) {
        BackendProcess backend(root(), DEMO_BOARD);
        ASSERT_TRUE(backend.waitUntilReady());
        stage("1", Bytes(50000 + static_cast<std::size_t>(round), 'p'));
        std::thread restoring;
        if (round == 0) {
            ASSERT_EQ(restore({2, 3, 5}), 0);  // from here on, all three are equal
        } else {
            restoring = std::thread([] {
                while (restore({2, 3, 5}) == 0) {
                }
            });
            std::this_thread::sleep_for(std::chrono::milliseconds(3 * round));
        }
        EXPECT_EQ(backend.stop(SIGKILL), -SIGKILL);
        if (restoring.joinable()) {
            restoring.join();
        }

        BackendProcess next(root(), DEMO_BOARD);
        ASSERT_TRUE(next.waitUntilReady());
        EXPECT_EQ(namesIn(boardFile("/var/lib/board")),
                  (std::vector<std::string>{"backend.lock", "configurations", "restore.lock"}));
        const Bytes held = backedUp(2).payload;
        EXPECT_TRUE(backedUp(3).payload == held && backedUp(5).payload == held) << round;
    }
}

TEST_F(BackendTest, cleansUpAfterKilledBackup) {
    const std::string stray = std::string("efi_backup") + SESSION + ".aside-Ab12Yz";
    writeText(at(stray), "half");
    writeText(at("someone else's"), "whole");
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(names(), std::vector<std::string>{"someone else's"});
}

TEST_F(BackendTest, replacesStaleSocket) {
    ::close(openBoardSocket(1));
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(backup(0), 0);
}

TEST_F(BackendTest, refusesSecondStartOnSameRoot) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(whyNotStarted(root(), DEMO_BOARD), "a back-end is already running on " + root());
    EXPECT_EQ(backup(0), 0);
}

TEST_F(BackendTest, silentClientsDoNotBlockOthers) {
    BackendProcess backend(root(), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    std::vector<int> silent;
    for (int i = 0; i < 120; ++i) {  // more than there are connections
        silent.push_back(connectToBoard());
        sendBytes(silent.back(), {0, 0});
    }
    EXPECT_EQ(backup(0), 0);
    EXPECT_EQ(backend.stop(), 0);
    for (const int client : silent) {
        ::close(client);
    }
}

TEST_F(BackendTest, refusesUnusableRoot) {
    EXPECT_EQ(whyNotStarted(at("missing"), DEMO_BOARD),
              "cannot use " + at("missing") + ": No such file or directory");
    writeText(at("file"), "");
    EXPECT_EQ(whyNotStarted(at("file"), DEMO_BOARD),
              "cannot use " + at("file") + ": it is not a folder");
    std::filesystem::create_directory(at("root"));
    writeText(at("root/var"), "in the way");
    EXPECT_EQ(whyNotStarted(at("root"), DEMO_BOARD),
              "cannot use " + at("root/var") + ": it is not a folder");
}

TEST_F(BackendTest, refusesUnwritableRoot) {
    // Not even root can create a folder there.
    EXPECT_EQ(whyNotStarted("/proc", DEMO_BOARD),
              ::geteuid() == 0 ? "cannot make /proc/var: No such file or directory"
                               : "cannot use /proc: it belongs to another user");
}

TEST_F(BackendTest, refusesFolderThatOthersMayWrite) {
    using std::filesystem::perms;
    for (const char* folder : {"", "/var", "/var/run", "/var/tmp", "/var/lib", "/var/lib/board"}) {
        const std::string path = root() + folder;
        std::filesystem::create_directories(path);
        const perms before = std::filesystem::status(path).permissions();
        for (const perms others : {perms::group_write, perms::others_write}) {
            std::filesystem::permissions(path, before | others);
            EXPECT_EQ(whyNotStarted(root(), DEMO_BOARD),
                      "cannot use " + path + ": others may write there: chmod go-w " + path);
        }
        std::filesystem::permissions(path, before);
    }
}

TEST_F(BackendTest, refusesFolderOfAnotherUser) {
    for (const char* folder : {"", "/var", "/var/run", "/var/tmp", "/var/lib"}) {
        const std::string path = root() + folder;
        if (::chown(path.c_str(), 1, 1) != 0) {
            GTEST_SKIP() << "only root may give a folder away";
        }
        EXPECT_EQ(whyNotStarted(root(), DEMO_BOARD),
                  "cannot use " + path + ": it belongs to another user");
        EXPECT_EQ(::chown(path.c_str(), ::geteuid(), ::getegid()), 0);
    }
}

TEST_F(BackendTest, acceptsFaultOrdersOnlyWhenAllowed) {
    const std::string order = "status";
    const RequestFrame request = {RequestKind::CONTROL, 0, "", Bytes(order.begin(), order.end())};
    for (const bool allowed : {false, true}) {
        std::vector<std::string> arguments = {"--root", root(), "--board", DEMO_BOARD};
        if (allowed) {
            arguments.emplace_back("--allow-faults");
        }
        BackendProcess backend(arguments);
        ASSERT_TRUE(backend.waitUntilReady());
        ReplyFrame reply;
        EXPECT_EQ(ask(request, reply), allowed ? 0 : static_cast<int>(BACKEND_FAULTS_NOT_ALLOWED));
    }
}

TEST_F(BackendTest, refusesTooLongSocketPath) {
    const std::string deep = at(std::string(100, 'd'));
    std::filesystem::create_directory(deep);
    EXPECT_EQ(whyNotStarted(deep, DEMO_BOARD),
              "the socket path " + deep + BACKEND_SOCKET + " is longer than 107 bytes");
}

TEST_F(BackendTest, locatesErrorInBoardDescription) {
    writePrivateText(at("board.toml"), "max_partitions = 8\n[[partition]\n");
    const std::string syntax = whyNotStarted(root(), at("board.toml"));
    EXPECT_TRUE(syntax.starts_with(at("board.toml") + ":2:")) << syntax;
    writePrivateText(at("board.toml"), "max_partitions = 8\nboards = 3\n");
    EXPECT_EQ(whyNotStarted(root(), at("board.toml")),
              at("board.toml") + ":2:10: unknown key \"boards\"");
    EXPECT_TRUE(whyNotStarted(root(), at("missing.toml")).starts_with(at("missing.toml") + ": "));
}

TEST_F(BackendTest, refusesAndKeepsDamagedState) {
    std::filesystem::create_directories(boardFile("/var/lib/board"));
    const std::string path = boardFile("/var/lib/board/configurations");
    writeText(path, "damaged");
    EXPECT_TRUE(whyNotStarted(root(), DEMO_BOARD).starts_with(path + " is damaged"));
    EXPECT_EQ(readText(path), "damaged");
}

TEST_F(BackendTest, refusesInvalidArguments) {
    const std::vector<std::string> misuses[] = {{},
                                                {"--root"},
                                                {"--root", "/tmp"},
                                                {"--board", "x"},
                                                {"--root", "/tmp", "--board", "x", "y"},
                                                {"--rood", "/tmp", "--board", "x"}};
    for (const std::vector<std::string>& misuse : misuses) {
        BackendProcess backend(misuse);
        EXPECT_FALSE(backend.waitUntilReady());
        EXPECT_EQ(backend.waitForEnd(), 2);
        EXPECT_TRUE(backend.errors().ends_with("(see --help)\n")) << backend.errors();
    }
}

}  // namespace VeskLib::Test
