#include "platform/host/channel/Channel.h"

#include "platform/host/base/SystemPath.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"
#include "tests/support/happensInTime.h"

#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace VeskLib::Test {

using namespace Host;

namespace {

// Milliseconds: a timeout that must expire.
const int SHORT = 50;

RequestFrame makeRequest() {
    return {RequestKind::GET, 0x0201002F, SESSION, {}};
}

Bytes makeReply() {
    return framed(encode(ReplyFrame{0, {1, 2, 3, 4, 5}}));
}

// Returns the result of an exchange with a back-end that receives the request and then runs
// `script`. Checks that a failure leaves the reply unchanged and is returned again by the next
// exchange.
int codeFor(const std::function<void(int client)>& script, int deadline = LONG) {
    const ScriptedServer server([&script](int client) {
        receiveFramed(client);
        script(client);
    });
    Channel channel(deadline);
    ReplyFrame reply = {77, {7}};
    const int code = channel.exchange(makeRequest(), reply);
    EXPECT_TRUE(code == 0 || (reply.errorCode == 77 && reply.payload == Bytes{7}));
    ReplyFrame second;
    EXPECT_TRUE(code == 0 || channel.exchange(makeRequest(), second) == code);
    return code;
}

int codeForReply(const Bytes& bytes) {
    return codeFor([&bytes](int client) { sendBytes(client, bytes); });
}

class ChannelTest : public RootTest {
protected:
};

}  // namespace

TEST_F(ChannelTest, sendsRequestAndReceivesReply) {
    Bytes received;
    ReplyFrame reply;
    {
        const ScriptedServer server([&received](int client) {
            received = receiveFramed(client);
            sendBytes(client, makeReply());
        });
        Channel channel(LONG);
        EXPECT_EQ(channel.exchange(makeRequest(), reply), 0);
    }
    EXPECT_EQ(received, framed(encode(makeRequest())));
    EXPECT_EQ(reply.errorCode, 0U);
    EXPECT_EQ(reply.payload, (Bytes{1, 2, 3, 4, 5}));
}

TEST_F(ChannelTest, sendsRequestInOnePiece) {
    std::size_t first = 0;
    {
        const ScriptedServer server([&first](int client) {
            Bytes piece(1000);
            const ssize_t count = ::recv(client, piece.data(), piece.size(), 0);
            first = static_cast<std::size_t>(count);
            sendBytes(client, makeReply());
        });
        Channel channel(LONG);
        ReplyFrame reply;
        EXPECT_EQ(channel.exchange(makeRequest(), reply), 0);
    }
    EXPECT_EQ(first, framed(encode(makeRequest())).size());
}

TEST_F(ChannelTest, receivesReplyInPieces) {
    for (const std::size_t pieceSize : {1U, 2U, 4U}) {
        EXPECT_EQ(codeFor([pieceSize](int client) {
                      const Bytes reply = makeReply();
                      for (std::size_t at = 0; at < reply.size(); at += pieceSize) {
                          const std::size_t end = std::min(at + pieceSize, reply.size());
                          sendBytes(client, {reply.begin() + static_cast<long>(at),
                                             reply.begin() + static_cast<long>(end)});
                          std::this_thread::yield();
                      }
                  }),
                  0);
    }
}

TEST_F(ChannelTest, severalExchangesUseOneConnection) {
    const ScriptedServer server([](int client) {
        for (int i = 0; i < 3; ++i) {
            receiveFramed(client);
            sendBytes(client, makeReply());
        }
    });
    Channel channel(LONG);
    for (int i = 0; i < 3; ++i) {
        ReplyFrame reply;
        EXPECT_EQ(channel.exchange(makeRequest(), reply), 0);
    }
}

TEST_F(ChannelTest, returnsRefusalAndStaysUsable) {
    const ScriptedServer server([](int client) {
        receiveFramed(client);
        sendBytes(client, framed(encode(ReplyFrame{1551, {9}})));
        receiveFramed(client);
        sendBytes(client, makeReply());
    });
    Channel channel(LONG);
    ReplyFrame reply = {0, {7}};
    EXPECT_EQ(channel.exchange(makeRequest(), reply), 1551);
    EXPECT_EQ(reply.payload, Bytes{9});
    EXPECT_EQ(channel.exchange(makeRequest(), reply), 0);
    EXPECT_EQ(reply.payload.size(), 5U);
}

TEST_F(ChannelTest, closesConnectionAtTimeout) {
    std::atomic<bool> left = false;
    const ScriptedServer server([&left](int client) {
        receiveFramed(client);
        left = receiveBytes(client, 1).empty();
    });
    Channel channel(SHORT);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_TIMEOUT);
    EXPECT_TRUE(happensInTime([&left] { return left.load(); }));
}

TEST_F(ChannelTest, staysUnreachableAfterMissingSocket) {
    Channel channel(LONG);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_UNREACHABLE);
    const ScriptedServer server([](int client) { waitForEnd(client); });
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_UNREACHABLE);
}

TEST_F(ChannelTest, staleSocketIsUnreachable) {
    ::close(openBoardSocket(1));
    Channel channel(LONG);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_UNREACHABLE);
}

TEST_F(ChannelTest, fileInPlaceOfTheSocketIsUnreachable) {
    writeText(getCGIPath(BACKEND_SOCKET), "");
    Channel channel(LONG);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_UNREACHABLE);
}

TEST_F(ChannelTest, silentBackendTimesOut) {
    EXPECT_EQ(codeFor(waitForEnd, SHORT), CHANNEL_TIMEOUT);
}

TEST_F(ChannelTest, incompleteReplyTimesOut) {
    for (const std::size_t size : {1U, 3U, 4U, 5U, 12U}) {
        EXPECT_EQ(codeFor(
                      [size](int client) {
                          sendBytes(client, cut(makeReply(), size));
                          waitForEnd(client);
                      },
                      SHORT),
                  CHANNEL_TIMEOUT)
            << size;
    }
}

// A back-end that sends a byte now and then must not extend the deadline.
TEST_F(ChannelTest, deadlineCoversWholeExchange) {
    EXPECT_EQ(codeFor(
                  [](int client) {
                      const Bytes reply = framed(Bytes(1000, 0));
                      for (const unsigned char byte : reply) {
                          unsigned char ignored = 0;
                          if (::recv(client, &ignored, 1, MSG_DONTWAIT) == 0) {
                              break;
                          }
                          sendBytes(client, {byte});
                          std::this_thread::sleep_for(std::chrono::milliseconds(5));
                      }
                  },
                  SHORT),
              CHANNEL_TIMEOUT);
}

TEST_F(ChannelTest, backendThatDoesNotReadTimesOut) {
    const ScriptedServer server([](int client) {
        // Reads nothing; the request is larger than the socket's buffer.
        unsigned char byte = 0;
        ::recv(client, &byte, 1, MSG_PEEK);
        waitForHangUp(client);
    });
    Channel channel(SHORT);
    RequestFrame request = makeRequest();
    request.payload.resize(LARGEST_FRAME - 100);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(request, reply), CHANNEL_TIMEOUT);
}

TEST_F(ChannelTest, fullBacklogTimesOut) {
    const int listener = openBoardSocket(0);
    const int waiting[] = {connectToBoardWithoutWaiting(), connectToBoardWithoutWaiting()};
    Channel channel(SHORT);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_TIMEOUT);
    for (const int client : waiting) {
        ::close(client);
    }
    ::close(listener);
}

TEST_F(ChannelTest, reportsBrokenChannelIfReplyIsTornAtAnyByte) {
    const Bytes whole = makeReply();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(codeForReply(cut(whole, size)), CHANNEL_BROKEN) << size;
    }
}

// Without MSG_NOSIGNAL this test would be killed by SIGPIPE.
TEST_F(ChannelTest, reportsBrokenChannelIfBackendHangsUp) {
    const ScriptedServer server([](int) {});
    Channel channel(LONG);
    RequestFrame request = makeRequest();
    request.payload.resize(LARGEST_FRAME - 100);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(request, reply), CHANNEL_BROKEN);
}

TEST_F(ChannelTest, rejectsOversizedReplyByItsLength) {
    for (const char* length : {"00 10 00 01", "7F FF FF FF", "FF FF FF FF"}) {
        EXPECT_EQ(codeFor([length](int client) {
                      sendBytes(client, fromHexadecimal(length));
                      waitForEnd(client);
                  }),
                  CHANNEL_MALFORMED)
            << length;
    }
}

TEST_F(ChannelTest, receivesLargestReply) {
    EXPECT_EQ(codeForReply(framed(Bytes(LARGEST_FRAME, 0))), 0);
}

TEST_F(ChannelTest, frameTooShortForAReplyIsMalformed) {
    for (std::size_t size = 0; size < 4; ++size) {
        EXPECT_EQ(codeForReply(framed(Bytes(size))), CHANNEL_MALFORMED) << size;
    }
}

TEST_F(ChannelTest, doesNotSendOversizedRequestAndStaysUsable) {
    const ScriptedServer server([](int client) {
        receiveFramed(client);
        sendBytes(client, makeReply());
    });
    Channel channel(LONG);
    RequestFrame request = makeRequest();
    request.payload.resize(LARGEST_FRAME);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(request, reply), CHANNEL_MALFORMED);
    EXPECT_EQ(channel.exchange(makeRequest(), reply), 0);
}

TEST_F(ChannelTest, connectsUnderDeepRoot) {
    const std::string deep = at(std::string(100, 'd') + "/" + std::string(100, 'e'));
    std::filesystem::create_directories(deep + "/var/run");
    ::setenv("BOARD_ROOT", deep.c_str(), 1);
    EXPECT_EQ(codeForReply(makeReply()), 0);

    std::filesystem::remove_all(deep);
    Channel channel(LONG);
    ReplyFrame reply;
    EXPECT_EQ(channel.exchange(makeRequest(), reply), CHANNEL_UNREACHABLE);
}

}  // namespace VeskLib::Test
