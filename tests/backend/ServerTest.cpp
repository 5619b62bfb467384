#include "board/backend/Server.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/SocketAddress.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"
#include "tests/support/BoardTest.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

namespace VeskLib::Test {

using namespace Board;
using namespace Host;

namespace {

class ServerTest : public RootTest {
public:
    ~ServerTest() override {
        release();
        stop();
    }

protected:
    void start(const ConnectionLimits& limits = {}) {
        server = std::make_unique<Server>(
            socketPath,
            [this](const RequestFrame& request, const IsAwaited& /*isAwaited*/) {
                return answer(request);
            },
            limits);
        stopEvent = ::eventfd(0, EFD_CLOEXEC);
        thread = std::thread([this] { server->run(stopEvent); });
    }

    // Stops the server in the same way as SIGTERM.
    void stop() {
        if (thread.joinable()) {
            const std::uint64_t one = 1;
            EXPECT_EQ(::write(stopEvent, &one, sizeof one), static_cast<ssize_t>(sizeof one));
            thread.join();
            server.reset();
            ::close(stopEvent);
        }
    }

    // Lets a held request continue.
    void release() {
        if (!released) {
            released = true;
            gate.set_value();
        }
    }

    static int exchange(Channel& channel, const Bytes& payload = {1, 2, 3}) {
        ReplyFrame reply;
        const int code = channel.exchange({RequestKind::GET, 0, "", payload}, reply);
        EXPECT_TRUE(code != 0 || reply.payload == payload);
        return code;
    }

    static int exchangeOnce() {
        Channel channel(LONG);
        return exchange(channel);
    }

    std::string whyNotStarted() {
        try {
            start();
            return "started";
        } catch (const std::runtime_error& failure) {
            return failure.what();
        }
    }

    // Waits until a held request has begun.
    void waitForHeldRequest() {
        const auto limit = std::chrono::milliseconds(LONG);
        EXPECT_EQ(arrived.get_future().wait_for(limit), std::future_status::ready);
    }

    const std::string socketPath = boardFile(BACKEND_SOCKET);

private:
    // Echoes the payload.
    ReplyFrame answer(const RequestFrame& request) {
        if (request.number == HELD_REQUEST) {
            arrived.set_value();
            opened.wait();
        }
        return {0, request.payload};
    }

    std::promise<void> arrived;
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    bool released = false;
    std::unique_ptr<Server> server;
    int stopEvent = -1;
    std::thread thread;
};

// Returns the error code in a framed reply, or -1 if it is not a complete reply.
int codeOf(const Bytes& framedReply) {
    ReplyFrame reply;
    const bool whole =
        framedReply.size() >= 8 && decode(Bytes(framedReply.begin() + 4, framedReply.end()), reply);
    return whole ? static_cast<int>(reply.errorCode) : -1;
}

}  // namespace

TEST_F(ServerTest, answersManyRequestsOfEachClient) {
    start();
    for (int client = 0; client < 5; ++client) {
        Channel channel(LONG);
        for (unsigned char request = 0; request < 5; ++request) {
            EXPECT_EQ(exchange(channel, Bytes(request, request)), 0);
        }
    }
}

TEST_F(ServerTest, onlyOwnerMayConnect) {
    start();
    struct stat status = {};
    ASSERT_EQ(::stat(socketPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFSOCK | 0600U);
}

TEST_F(ServerTest, readsRequestInPieces) {
    start();
    const int client = connectToBoard();
    for (const unsigned char byte : framed(encode(RequestFrame{RequestKind::GET, 0, "", {7}}))) {
        sendBytes(client, {byte});
        std::this_thread::yield();
    }
    EXPECT_EQ(receiveFramed(client), framed(encode(ReplyFrame{0, {7}})));
    ::close(client);
}

TEST_F(ServerTest, silentAndHalfSentRequestsDoNotBlockOthers) {
    start();
    std::vector<int> clients;
    for (const Bytes& start : {Bytes{}, {0}, {0, 0, 0, 9}, {0, 0, 0, 9, 1, 0}}) {
        clients.push_back(connectToBoard());
        sendBytes(clients.back(), start);
    }
    EXPECT_EQ(exchangeOnce(), 0);
    for (const int client : clients) {
        ::close(client);
    }
    EXPECT_EQ(exchangeOnce(), 0);
}

TEST_F(ServerTest, slowRequestDoesNotBlockOthers) {
    start();
    Channel slow(LONG);
    ReplyFrame reply;
    std::thread asking([&] {
        EXPECT_EQ(slow.exchange({RequestKind::GET, HELD_REQUEST, "", {5}}, reply), 0);
    });
    waitForHeldRequest();
    EXPECT_EQ(exchangeOnce(), 0);
    release();
    asking.join();
    EXPECT_EQ(reply.payload, Bytes{5});
}

TEST_F(ServerTest, disconnectsQuietClientsToMakeRoom) {
    ConnectionLimits limits;
    limits.connections = 3;
    limits.quietMilliseconds = 1;
    start(limits);
    std::vector<int> clients(10);
    std::generate(clients.begin(), clients.end(), connectToBoard);
    EXPECT_EQ(exchangeOnce(), 0);
    EXPECT_TRUE(receiveBytes(clients.front(), 1).empty());  // the first was disconnected
    for (const int client : clients) {
        ::close(client);
    }
}

TEST_F(ServerTest, keepsClientWithRequestInProgress) {
    ConnectionLimits limits;
    limits.connections = 1;
    limits.quietMilliseconds = 5;
    start(limits);
    ReplyFrame reply;
    std::thread asking([&reply] {
        // The quiet time is so short that a client may be disconnected before its request is read.
        int code = CHANNEL_BROKEN;
        while (code == CHANNEL_BROKEN) {
            Channel working(LONG);
            code = working.exchange({RequestKind::GET, HELD_REQUEST, "", {5}}, reply);
        }
    });
    waitForHeldRequest();
    Channel other(100);
    EXPECT_EQ(exchange(other), CHANNEL_TIMEOUT);
    release();
    asking.join();
    EXPECT_EQ(reply.payload, Bytes{5});
}

TEST_F(ServerTest, disconnectsClientThatSendsNothing) {
    ConnectionLimits limits;
    limits.requestMilliseconds = 20;
    start(limits);
    const int client = connectToBoard();
    EXPECT_TRUE(receiveBytes(client, 1).empty());
    ::close(client);
}

TEST_F(ServerTest, disconnectsClientThatDoesNotReadReply) {
    ConnectionLimits limits;
    limits.replyMilliseconds = 20;
    start(limits);
    const int client = connectToBoard();
    const RequestFrame request = {RequestKind::GET, 0, "", Bytes(LARGEST_FRAME - 100)};
    sendBytes(client, framed(encode(request)));
    waitForHangUp(client);
    EXPECT_EQ(exchangeOnce(), 0);
    ::close(client);
}

TEST_F(ServerTest, refusesMalformedRequestAndDisconnects) {
    start();
    for (const Bytes& frame : {Bytes{}, {1}, {9, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0, 5, 'x'}}) {
        const int client = connectToBoard();
        sendBytes(client, framed(frame));
        EXPECT_EQ(codeOf(receiveFramed(client)), BACKEND_MALFORMED_REQUEST) << frame.size();
        EXPECT_TRUE(receiveBytes(client, 1).empty());
        ::close(client);
    }
    EXPECT_EQ(exchangeOnce(), 0);
}

TEST_F(ServerTest, refusesOversizedFrameByItsLength) {
    start();
    for (const Bytes& length : {Bytes{0, 0x10, 0, 1}, {0xFF, 0xFF, 0xFF, 0xFF}}) {
        const int client = connectToBoard();
        sendBytes(client, length);
        EXPECT_EQ(codeOf(receiveFramed(client)), BACKEND_MALFORMED_REQUEST);
        EXPECT_TRUE(receiveBytes(client, 1).empty());
        ::close(client);
    }
}

TEST_F(ServerTest, survivesClientThatHangsUp) {
    start();
    const Bytes request = framed(encode(RequestFrame{RequestKind::GET, 0, "", Bytes(100000)}));
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{50}, request.size()}) {
        const int client = connectToBoard();
        sendBytes(client, cut(request, size));
        ::close(client);
    }
    EXPECT_EQ(exchangeOnce(), 0);
}

TEST_F(ServerTest, answersRequestInProgressBeforeShutdown) {
    ConnectionLimits limits;
    limits.endMilliseconds = LONG;
    start(limits);
    const int silent = connectToBoard();
    Channel channel(LONG);
    ReplyFrame reply;
    std::thread asking([&] {
        EXPECT_EQ(channel.exchange({RequestKind::GET, HELD_REQUEST, "", {5}}, reply), 0);
    });
    waitForHeldRequest();
    std::thread stopping([this] { stop(); });
    EXPECT_TRUE(receiveBytes(silent, 1).empty());  // the shutdown has begun
    release();
    asking.join();
    stopping.join();
    EXPECT_EQ(reply.payload, Bytes{5});
    EXPECT_FALSE(exists(socketPath));
    ::close(silent);
}

TEST_F(ServerTest, clientThatDoesNotReadReplyDoesNotDelayShutdown) {
    ConnectionLimits limits;
    limits.replyMilliseconds = LONG;
    limits.endMilliseconds = 20;
    start(limits);
    const int client = connectToBoard();
    const RequestFrame request = {RequestKind::GET, 0, "", Bytes(LARGEST_FRAME - 100)};
    sendBytes(client, framed(encode(request)));
    EXPECT_EQ(receiveBytes(client, 1).size(), 1U);  // it has begun to answer
    stop();
    ::close(client);
}

TEST_F(ServerTest, replacesStaleSocket) {
    ::close(openBoardSocket(1));
    ASSERT_TRUE(exists(socketPath));
    start();
    EXPECT_EQ(exchangeOnce(), 0);
}

TEST_F(ServerTest, refusesToReplaceFileThatIsNotASocket) {
    writeText(socketPath, "precious");
    EXPECT_EQ(whyNotStarted(), socketPath + " is in the way: it is not a socket");
    EXPECT_EQ(readText(socketPath), "precious");
}

TEST_F(ServerTest, reportsMissingFolder) {
    ASSERT_EQ(::rmdir(boardFile("/var/run").c_str()), 0);
    EXPECT_EQ(whyNotStarted(), "cannot listen on " + socketPath + ": No such file or directory");
}

}  // namespace VeskLib::Test
