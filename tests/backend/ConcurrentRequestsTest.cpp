// Many clients send every kind of request to the daemon at once. In a build with ThreadSanitizer
// the daemon exits at the first data race, and these tests print its report.

#include "data/requestNumbers.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/Login.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/BackendProcess.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"
#include "tests/support/BoardTest.h"
#include "tests/support/sessions.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace VeskLib::Test {

using namespace Host;
using testing::AnyOf;
using testing::StartsWith;

namespace {

const int CLIENTS_OF_EACH_KIND = 3;
const int ROUNDS = 10;
const int SESSIONS = 10;

// Returns a well-formed session identifier, different for each client.
std::string sessionOf(int client) {
    return "000000000000000" + std::to_string(client);
}

RequestFrame controlFrame(const std::string& order) {
    return {RequestKind::CONTROL, 0, "", Bytes(order.begin(), order.end())};
}

class ConcurrentRequestsTest : public RootTest {
protected:
    // Runs clients of several kinds at once, each in a thread of its own, in ten sessions.
    void work(const std::vector<std::function<void(const std::string& session)>>& kinds) {
        // Before the first client starts; otherwise it could read a half-written file.
        for (int session = 0; session < SESSIONS; ++session) {
            writeSession(sessionOf(session) + "-" + std::string(32, '0'), "admin");
        }
        std::vector<std::thread> threads;
        for (const auto& kind : kinds) {
            for (int client = 0; client < CLIENTS_OF_EACH_KIND; ++client) {
                threads.emplace_back(kind, sessionOf(static_cast<int>(threads.size() % SESSIONS)));
            }
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    // Returns the code of the exchange. It may fail, because the daemon may be shutting down.
    static int ask(Channel& channel, const RequestFrame& request) {
        ReplyFrame reply;
        return channel.exchange(request, reply);
    }

    static int askOnce(const RequestFrame& request) {
        Channel channel(LONG);
        return ask(channel, request);
    }

    static RequestFrame backupOf(unsigned char partition, const std::string& session) {
        return {RequestKind::SET, VeskUi::SET_BACKUP, session, {0, 0, 0, partition}};
    }

    static RequestFrame restoreTo(unsigned char target, const std::string& session) {
        return {RequestKind::SET, VeskUi::SET_RESTORE, session, {0, 1, target}};
    }

    // Sends several requests over one connection, as a page does.
    static void display(const std::string& session) {
        for (int round = 0; round < ROUNDS; ++round) {
            Channel channel(LONG);
            for (const unsigned int number :
                 {VeskUi::GET_PARTITION_INFO, VeskUi::GET_HARD_INSTALL_INFO,
                  VeskUi::GET_VERSION_INFO}) {
                EXPECT_EQ(ask(channel, {RequestKind::GET, number, session, {}}), 0);
            }
        }
    }

    static void backUp(const std::string& session) {
        for (int round = 0; round < ROUNDS; ++round) {
            EXPECT_EQ(askOnce(backupOf(3, session)), 0);
            EXPECT_EQ(askOnce(backupOf(2, session)), 0);
        }
    }

    static void restore(const std::string& session) {
        ConfigurationFile file;
        file.version = "1";
        file.payload = Bytes(session.begin(), session.end());
        writeBytes(at("restored_eficonf" + session), encode(file));
        for (int round = 0; round < ROUNDS; ++round) {
            const int busy = BACKEND_RESTORE_BUSY;
            const int running = BACKEND_PARTITION_RUNNING;
            EXPECT_THAT(askOnce(restoreTo(3, session)), AnyOf(0, busy, running));
        }
    }

    static void logIn(const std::string& origin) {
        const auto login = [&origin](const char* password) {
            return RequestFrame{RequestKind::LOGIN, 0, "",
                                encode(LoginRequest{"admin", password, origin})};
        };
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(askOnce(login("wrong")), static_cast<int>(BACKEND_LOGIN_REFUSED));
            EXPECT_EQ(askOnce(login("admin")), 0);
        }
    }

    static void giveOrders(const std::string& /*session*/) {
        for (int round = 0; round < ROUNDS; ++round) {
            for (const char* order : {"partition 3 on", "refuse 99 1047 1", "slow 1 1", "status",
                                      "partition 3 off", "reset"}) {
                EXPECT_EQ(askOnce(controlFrame(order)), 0) << order;
            }
        }
    }

    static void hangUp(const std::string& session) {
        const Bytes request = framed(encode(backupOf(3, session)));
        for (std::size_t size = 0; size <= request.size(); size += 3) {
            const int client = connectToBoard();
            sendBytes(client, cut(request, size));
            ::close(client);
        }
    }

    // Stops the daemon and checks its exit status and standard error.
    static void expectSoundEnd(BackendProcess& backend) {
        EXPECT_EQ(backend.stop(), 0);
        for (const std::string& line : linesOf(backend.errors())) {
            ASSERT_THAT(line, StartsWith("efi_backend: ")) << backend.errors();
        }
    }
};

}  // namespace

TEST_F(ConcurrentRequestsTest, servesClientsOfEveryKindAtOnce) {
    BackendProcess backend(boardFile(""), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    work({display, backUp, restore, logIn, giveOrders, hangUp});
    expectSoundEnd(backend);
}

TEST_F(ConcurrentRequestsTest, disconnectsQuietClientsWhileOthersWork) {
    BackendProcess backend(boardFile(""), DEMO_BOARD);
    ASSERT_TRUE(backend.waitUntilReady());
    std::vector<int> quiet;
    for (int count = 0; count < 120; ++count) {  // more than there are connections
        quiet.push_back(connectToBoard());
    }
    work({display, hangUp});
    expectSoundEnd(backend);
    for (const int client : quiet) {
        ::close(client);
    }
}

TEST_F(ConcurrentRequestsTest, shutsDownWhileClientsSendRequests) {
    for (int round = 0; round < 5; ++round) {
        BackendProcess backend(boardFile(""), DEMO_BOARD);
        ASSERT_TRUE(backend.waitUntilReady());
        std::vector<std::thread> clients;
        writeSession(COOKIE, "admin");
        for (int client = 0; client < 2 * CLIENTS_OF_EACH_KIND; ++client) {
            writeSession(sessionOf(client) + "-" + std::string(32, '0'), "admin");
        }
        for (int client = 0; client < 2 * CLIENTS_OF_EACH_KIND; ++client) {
            clients.emplace_back([client] {
                while (askOnce(backupOf(3, sessionOf(client))) == 0) {
                }
            });
        }
        EXPECT_EQ(askOnce(backupOf(2, SESSION)), 0);
        expectSoundEnd(backend);
        for (std::thread& client : clients) {
            client.join();
        }
    }
}

}  // namespace VeskLib::Test
