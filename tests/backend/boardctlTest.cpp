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
#include "tests/support/ChildProcess.h"
#include "tests/support/happensInTime.h"
#include "tests/support/sessions.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace VeskLib::Test {

using namespace Host;
using Clock = std::chrono::steady_clock;

namespace {

enum Status { DONE = 0, FAILED = 1, USAGE = 2 };

// The daemon on the demo board, and boardctl, both as processes of their own.
class BoardctlTest : public RootTest {
protected:
    BoardctlTest() { writeSession(COOKIE, "admin"); }

    void start() { ASSERT_TRUE(backend.waitUntilReady()); }

    static ChildResult boardctl(std::vector<std::string> words, const std::string& root) {
        words.insert(words.begin(), {BOARDCTL, "--root", root});
        return runProgram(words, {});
    }

    static ChildResult boardctl(const std::vector<std::string>& words) {
        return boardctl(words, boardFile(""));
    }

    // Gives an order that must succeed, and returns the output of boardctl.
    static std::string order(const std::vector<std::string>& words) {
        const ChildResult result = boardctl(words);
        EXPECT_EQ(result.exitStatus, DONE) << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }

    // Returns true if requests use up all active faults in time.
    static bool faultsAreMet() {
        return happensInTime([] { return order({"status"}).empty(); });
    }

    static int ask(const RequestFrame& request, int milliseconds = LONG) {
        ReplyFrame reply;
        return Channel(milliseconds).exchange(request, reply);
    }

    static int getPartitions(int milliseconds = LONG) {
        return ask({RequestKind::GET, VeskUi::GET_PARTITION_INFO, SESSION, {}}, milliseconds);
    }

    static int backup(unsigned char partition, int milliseconds = LONG) {
        return ask({RequestKind::SET, VeskUi::SET_BACKUP, SESSION, {0, 0, 0, partition}},
                   milliseconds);
    }

    static int restore(unsigned char target, int milliseconds = LONG) {
        return ask({RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 1, target}}, milliseconds);
    }

    // Returns the partition's configuration, from a backup.
    static Bytes configurationOf(unsigned char partition) {
        ConfigurationFile file;
        EXPECT_EQ(backup(partition), 0);
        EXPECT_TRUE(decode(readBytes(at(std::string("efi_backup") + SESSION)), file));
        return file.payload;
    }

    static void stage(const Bytes& payload) {
        ConfigurationFile file;
        file.version = "1";
        file.payload = payload;
        writeBytes(at(std::string("restored_eficonf") + SESSION), encode(file));
    }

    BackendProcess backend{boardFile(""), DEMO_BOARD};
};

}  // namespace

TEST_F(BoardctlTest, explainsHowToAllowOrders) {
    start();
    backend.stop();
    BackendProcess careful({"--root", boardFile(""), "--board", DEMO_BOARD});
    ASSERT_TRUE(careful.waitUntilReady());
    const ChildResult result = boardctl({"status"});
    EXPECT_EQ(result.exitStatus, FAILED);
    EXPECT_EQ(result.errors,
              "boardctl: the back-end accepts no orders: start it with --allow-faults, which an "
              "installed board does not use (code 1614)\n");
    EXPECT_EQ(boardctl({"die"}).exitStatus, FAILED);
}

TEST_F(BoardctlTest, ordersAreStillAllowedAfterRestart) {
    start();
    order({"die"});
    EXPECT_TRUE(happensInTime([] { return boardctl({"status"}).exitStatus == DONE; }));
}

TEST_F(BoardctlTest, noFaultIsOnInitially) {
    start();
    EXPECT_EQ(order({"status"}), "");
}

TEST_F(BoardctlTest, refusesNextRequestsOfNumberWithoutExecutingThem) {
    start();
    const Bytes before = configurationOf(3);
    stage({1, 2, 3});
    EXPECT_EQ(order({"refuse", "0x020100A4", "1047", "--times", "2"}),
              "request 33620132 is refused with code 1047, 2 times\n");
    EXPECT_EQ(restore(3), 1047);
    EXPECT_EQ(configurationOf(3), before);
    EXPECT_EQ(order({"status"}), "request 33620132 is refused with code 1047, 1 times\n");
    EXPECT_EQ(restore(3), 1047);
    EXPECT_EQ(order({"status"}), "");
    EXPECT_EQ(restore(3), 0);
    EXPECT_EQ(configurationOf(3), (Bytes{1, 2, 3}));
}

TEST_F(BoardctlTest, orderWithoutTimesAffectsOneRequest) {
    start();
    EXPECT_EQ(order({"refuse", "33620132", "1549"}),
              "request 33620132 is refused with code 1549, 1 times\n");
    order({"slow", "1"});
    order({"silent"});
    EXPECT_EQ(order({"torn", "6"}),
              "request 33620132 is refused with code 1549, 1 times\n"
              "requests wait 1 ms, 1 times\n"
              "requests are not answered, 1 times\n"
              "replies break off after 6 bytes, 1 times\n");
}

TEST_F(BoardctlTest, slowDelaysRequest) {
    start();
    order({"slow", "300"});
    const Clock::time_point before = Clock::now();
    EXPECT_EQ(getPartitions(), 0);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(300));
    EXPECT_EQ(order({"status"}), "");
}

TEST_F(BoardctlTest, delayedRequestDoesNotBlockOthers) {
    start();
    order({"slow", "600000"});
    EXPECT_EQ(getPartitions(50), CHANNEL_TIMEOUT);
    EXPECT_TRUE(faultsAreMet());
    EXPECT_EQ(getPartitions(), 0);
    EXPECT_EQ(backend.stop(), 0);
}

TEST_F(BoardctlTest, silentExecutesRequestWithoutAnswering) {
    start();
    stage({7});
    order({"silent"});
    // The client stays connected, because an abandoned restore would not be carried out.
    const int client = connectToBoard();
    sendBytes(
        client,
        framed(encode(RequestFrame{RequestKind::SET, VeskUi::SET_RESTORE, SESSION, {0, 1, 3}})));
    EXPECT_TRUE(faultsAreMet());
    EXPECT_TRUE(happensInTime([] { return configurationOf(3) == Bytes{7}; }));
    unsigned char byte = 0;
    EXPECT_EQ(::recv(client, &byte, 1, MSG_DONTWAIT), -1);
    ::close(client);
}

TEST_F(BoardctlTest, tornReplyBreaksConnection) {
    start();
    order({"torn", "6", "--times", "2"});
    EXPECT_EQ(getPartitions(), CHANNEL_BROKEN);
    EXPECT_EQ(backup(3), CHANNEL_BROKEN);
    EXPECT_EQ(getPartitions(), 0);
}

TEST_F(BoardctlTest, faultsAffectLogin) {
    start();
    const RequestFrame login = {RequestKind::LOGIN, 0, "",
                                encode(LoginRequest{"admin", "admin", ""})};
    order({"refuse", "0", "1609"});
    EXPECT_EQ(ask(login), static_cast<int>(BACKEND_FAILED));
    EXPECT_EQ(ask(login), 0);
}

TEST_F(BoardctlTest, faultsDoNotAffectOrders) {
    start();
    order({"silent", "--times", "3"});
    order({"torn", "1", "--times", "3"});
    order({"refuse", "0", "1609", "--times", "3"});
    order({"slow", "600000"});
    EXPECT_EQ(order({"reset"}), "");
    EXPECT_EQ(getPartitions(), 0);
}

TEST_F(BoardctlTest, switchesPartitionOnAndOff) {
    start();
    stage({5});
    EXPECT_EQ(restore(3), 0);
    EXPECT_EQ(order({"partition", "3", "on"}), "partition 3 is on\n");
    EXPECT_EQ(restore(3), static_cast<int>(BACKEND_PARTITION_RUNNING));
    EXPECT_EQ(restore(7), static_cast<int>(BACKEND_PARTITION_RUNNING));
    EXPECT_EQ(order({"partition", "7", "off"}), "partition 3 is on\npartition 7 is off\n");
    EXPECT_EQ(restore(7), 0);
    EXPECT_EQ(order({"partition", "3", "off"}), "partition 3 is off\npartition 7 is off\n");
    EXPECT_EQ(restore(3), 0);
    EXPECT_EQ(order({"reset"}), "");
    EXPECT_EQ(restore(7), static_cast<int>(BACKEND_PARTITION_RUNNING));
    EXPECT_EQ(restore(3), 0);
}

TEST_F(BoardctlTest, backendRestartsWithItsStateAndWithoutFaults) {
    start();
    stage({9, 9});
    EXPECT_EQ(restore(3), 0);
    order({"silent", "--times", "5"});
    order({"partition", "5", "on"});
    EXPECT_EQ(order({"die"}), "");
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(order({"status"}), "");
    EXPECT_EQ(configurationOf(3), (Bytes{9, 9}));
    EXPECT_EQ(restore(5), 0);
    // It can die repeatedly, and still shuts down normally.
    EXPECT_EQ(order({"die", "--back-in", "1"}), "");
    ASSERT_TRUE(backend.waitUntilReady());
    EXPECT_EQ(configurationOf(5), (Bytes{9, 9}));
    EXPECT_EQ(backend.stop(), 0);
    EXPECT_FALSE(exists(boardFile(BACKEND_SOCKET)));
}

TEST_F(BoardctlTest, backendStaysAwayForGivenTime) {
    start();
    int code = 0;
    // On a busy machine the back-end may be back before the request; then it stays away longer.
    for (int away = 500; code == 0 && away < LONG; away *= 2) {
        const Clock::time_point before = Clock::now();
        EXPECT_EQ(order({"die", "--back-in", std::to_string(away)}), "");
        // The connection of the order closes a moment before the socket does.
        do {
            code = getPartitions();
        } while (code == CHANNEL_BROKEN);
        const auto asked = Clock::now() - before;
        EXPECT_TRUE(code == CHANNEL_UNREACHABLE || asked >= std::chrono::milliseconds(away));
        ASSERT_TRUE(backend.waitUntilReady());
        EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(away));
        EXPECT_EQ(getPartitions(), 0);
    }
    EXPECT_EQ(code, CHANNEL_UNREACHABLE);
}

TEST_F(BoardctlTest, dyingBackendDisconnectsClients) {
    start();
    order({"slow", "600000"});
    std::thread asking([] { EXPECT_EQ(getPartitions(), CHANNEL_BROKEN); });
    EXPECT_TRUE(faultsAreMet());
    order({"die"});
    asking.join();
    ASSERT_TRUE(backend.waitUntilReady());
}

TEST_F(BoardctlTest, signalsEndBackendThatIsAway) {
    start();
    order({"die", "--back-in", "600000"});
    EXPECT_EQ(backend.stop(SIGTERM), -SIGTERM);
    BackendProcess next(boardFile(""), DEMO_BOARD);
    ASSERT_TRUE(next.waitUntilReady());
    order({"die", "--back-in", "600000"});
    EXPECT_EQ(next.stop(SIGINT), -SIGINT);
}

TEST_F(BoardctlTest, reportsOrderThatBackendRefuses) {
    start();
    const ChildResult result = boardctl({"slow", "600001"});
    EXPECT_EQ(result.exitStatus, FAILED);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "boardctl: the back-end refuses the order: a number is too large, such as a time "
              "above 600000 ms (code 1605)\n");
    EXPECT_EQ(boardctl({"die", "--back-in", "600001"}).exitStatus, FAILED);
    EXPECT_EQ(order({"status"}), "");
}

TEST_F(BoardctlTest, refusesPartitionsThatAreNotInstalled) {
    start();
    for (const char* number : {"4", "6", "8", "4294967295"}) {
        for (const char* state : {"on", "off"}) {
            const ChildResult result = boardctl({"partition", number, state});
            EXPECT_EQ(result.exitStatus, FAILED) << number;
            EXPECT_EQ(result.output, "");
            EXPECT_EQ(result.errors,
                      "boardctl: there is no such partition: the board description has none of "
                      "this number that is installed (code 1602)\n");
        }
    }
    EXPECT_EQ(order({"status"}), "");
}

TEST_F(BoardctlTest, explainsWhyItCannotConnect) {
    start();
    EXPECT_EQ(backend.stop(), 0);
    const std::string socket = boardFile(BACKEND_SOCKET);
    const std::string cannot = "boardctl: cannot connect to the back-end at ";
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"status"}, {"reset"}, {"silent"}, {"die"}, {"partition", "3", "on"}}) {
        const ChildResult result = boardctl(words);
        EXPECT_EQ(result.exitStatus, FAILED) << words[0];
        EXPECT_EQ(result.errors, cannot + socket +
                                     ": there is no such socket: the board is not running, or this "
                                     "is not its root (--root, BOARD_ROOT) (code 2001)\n");
    }
    const ChildResult elsewhere = boardctl({"status"}, at("missing"));
    EXPECT_EQ(elsewhere.exitStatus, FAILED);
    EXPECT_TRUE(elsewhere.errors.starts_with(cannot + at("missing") + BACKEND_SOCKET +
                                             ": there is no such socket"))
        << elsewhere.errors;
    const std::string deep = at(std::string(200, 'd'));
    EXPECT_TRUE(
        boardctl({"status"}, deep)
            .errors.starts_with(cannot + deep + BACKEND_SOCKET + ": there is no such socket"));
}

TEST_F(BoardctlTest, reportsStaleSocket) {
    start();
    order({"die", "--back-in", "600000"});
    EXPECT_TRUE(happensInTime([] {
        return boardctl({"status"})
                   .errors.find("it is not running; only its socket is still there (code 2001)") !=
               std::string::npos;
    }));
    EXPECT_EQ(backend.stop(SIGTERM), -SIGTERM);
}

TEST_F(BoardctlTest, reportsMissingPermission) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    start();
    const std::string root = boardFile("");
    const ChildResult result = runInChild([&root] {
        const uid_t nobody = 65534;
        if (::setuid(nobody) == 0) {
            ::execl(BOARDCTL, BOARDCTL, "--root", root.c_str(), "status", nullptr);
        }
        return 99;
    });
    EXPECT_EQ(result.exitStatus, FAILED);
    // A build with coverage counters also reports that it cannot write them as that user.
    EXPECT_TRUE(result.errors.starts_with(
        "boardctl: cannot connect to the back-end at " + boardFile(BACKEND_SOCKET) +
        ": no permission: use the account that runs the board (code 2001)\n"))
        << result.errors;
}

TEST_F(BoardctlTest, reportsOutputError) {
    start();
    order({"slow", "1"});
    for (const char* words : {"status", "--help", "refuse --help"}) {
        for (const auto& [output, reason] :
             {std::pair(" >/dev/full", "No space left on device"), {" >&-", "Bad file"}}) {
            const std::string command =
                BOARDCTL + (" --root '" + boardFile("")) + "' " + std::string(words) + output;
            const ChildResult result = runProgram({"/bin/sh", "-c", command});
            EXPECT_EQ(result.exitStatus, FAILED) << command;
            EXPECT_TRUE(result.errors.starts_with("boardctl: the answer could not be printed: " +
                                                  std::string(reason)))
                << result.errors;
        }
    }
}

TEST_F(BoardctlTest, takesRootFromEnvironment) {
    start();
    EXPECT_EQ(runProgram({BOARDCTL, "status"}).exitStatus, DONE);
    const ChildSetup elsewhere = {.environment = {{"BOARD_ROOT", at("missing")}}, .input = {}};
    EXPECT_EQ(runProgram({BOARDCTL, "status"}, elsewhere).exitStatus, FAILED);
    EXPECT_EQ(runProgram({BOARDCTL, "--root", boardFile(""), "status"}, elsewhere).exitStatus,
              DONE);
    const ChildSetup nowhere = {.environment = {{"BOARD_ROOT", ""}}, .input = {}};
    EXPECT_EQ(runProgram({BOARDCTL, "status"}, nowhere).exitStatus, USAGE);
}

TEST_F(BoardctlTest, reportsWrongUsageAndChangesNothing) {
    start();
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{},
                                               {"unknown"},
                                               {"status", "now"},
                                               {"reset", "reset"},
                                               {"refuse"},
                                               {"refuse", "1"},
                                               {"refuse", "one", "1"},
                                               {"refuse", "1", "one"},
                                               {"refuse", "-1", "1"},
                                               {"refuse", "4294967296", "1"},
                                               {"refuse", "1", "1", "1"},
                                               {"refuse", "1", "1", "--times"},
                                               {"refuse", "1", "1", "--times", "x"},
                                               {"slow"},
                                               {"slow", "x"},
                                               {"silent", "1"},
                                               {"silent", "--times", "-1"},
                                               {"silent", "--times", "0"},
                                               {"slow", "1", "--times", "0"},
                                               {"torn", "1", "--times", "0"},
                                               {"refuse", "1", "1", "--times", "0"},
                                               {"torn"},
                                               {"torn", "x"},
                                               {"partition"},
                                               {"partition", "3"},
                                               {"partition", "3", "out"},
                                               {"partition", "x", "on"},
                                               {"die", "1"},
                                               {"die", "--back-in", "x"},
                                               {"status", "--times", "1"},
                                               {"--unknown"}}) {
        const ChildResult result = boardctl(words);
        EXPECT_EQ(result.exitStatus, USAGE) << testing::PrintToString(words);
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors, "");
    }
    EXPECT_EQ(order({"status"}), "");
}

TEST_F(BoardctlTest, helpExitsWithZero) {
    const ChildResult result = runProgram({BOARDCTL, "--help"});
    EXPECT_EQ(result.exitStatus, DONE);
    for (const char* word : {"status", "refuse", "slow", "silent", "torn", "die", "partition",
                             "reset", "--root", "BOARD_ROOT"}) {
        EXPECT_NE(result.output.find(word), std::string::npos) << word;
    }
    for (const char* command :
         {"status", "refuse", "slow", "silent", "torn", "die", "partition", "reset"}) {
        const ChildResult help = runProgram({BOARDCTL, "--root", boardFile(""), command, "--help"});
        EXPECT_EQ(help.exitStatus, DONE);
        EXPECT_NE(help.output.find("--root DIR"), std::string::npos) << help.output;
        EXPECT_NE(help.output.find("BOARD_ROOT"), std::string::npos) << help.output;
    }
}

}  // namespace VeskLib::Test
