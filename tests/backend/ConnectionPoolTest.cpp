#include "board/backend/ConnectionPool.h"

#include "platform/host/channel/Channel.h"
#include "platform/host/channel/FrameStream.h"
#include "tests/backend/support/PoolRunner.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"
#include "tests/support/happensInTime.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <optional>

namespace VeskLib::Test {

using namespace Board;
using namespace Host;

namespace {

// Fixture for a pool that echoes requests, but sends only the first `sentBytes` bytes of each
// reply, if given.
class ConnectionPoolTest : public testing::Test {
protected:
    ConnectionPoolTest() {
        limits.requestMilliseconds = LONG;
        limits.endMilliseconds = LONG;
    }

    ~ConnectionPoolTest() override {
        pool.reset();
        ::close(client);
    }

    void start(std::optional<std::size_t> sentBytes) {
        sent = sentBytes;
        pool = std::make_unique<PoolRunner>(
            [this](const RequestFrame& request, const IsAwaited& /*isAwaited*/) {
                ++asked;
                Answer answer(ReplyFrame{0, request.payload});
                answer.sentBytes = sent;
                return answer;
            },
            limits);
        client = pool->connect();
    }

    void ask() const { sendBytes(client, framed(encode(REQUEST))); }

    // Returns true if a request reaches the handler in time.
    bool isAsked() const {
        return happensInTime([this] { return asked != 0; });
    }

    bool isSilent(int milliseconds) const {
        return !waitUntilReady(client, POLLIN, Deadline(milliseconds));
    }

    const RequestFrame REQUEST = {RequestKind::GET, 7, "", {1, 2, 3}};
    const Bytes REPLY = framed(encode(ReplyFrame{0, {1, 2, 3}}));
    ConnectionLimits limits;
    std::unique_ptr<PoolRunner> pool;
    int client = -1;
    std::atomic<int> asked = 0;

private:
    std::optional<std::size_t> sent;
};

}  // namespace

TEST_F(ConnectionPoolTest, sendsWholeReplyAndKeepsConnection) {
    start(std::nullopt);
    for (int round = 0; round < 3; ++round) {
        ask();
        EXPECT_EQ(receiveBytes(client, REPLY.size()), REPLY);
    }
    EXPECT_EQ(asked, 3);
}

TEST_F(ConnectionPoolTest, cutsTornReplyAtAnyLengthAndClosesConnection) {
    for (std::size_t size = 1; size <= REPLY.size(); ++size) {
        start(size);
        ask();
        EXPECT_EQ(receiveBytes(client, REPLY.size() + 1), cut(REPLY, size)) << size;
        pool.reset();
        ::close(client);
    }
    client = -1;
}

TEST_F(ConnectionPoolTest, sendsWholeReplyWhenCutIsPastItsEnd) {
    start(REPLY.size() + 1000);
    ask();
    EXPECT_EQ(receiveBytes(client, REPLY.size() + 1), REPLY);
}

TEST_F(ConnectionPoolTest, tornReplyIsABrokenFrameForTheClient) {
    start(6);
    ask();
    Bytes bytes = {9};
    EXPECT_EQ(receiveFrame(client, bytes, Deadline(LONG)), StreamResult::BROKEN);
    EXPECT_EQ(bytes, Bytes{9});
}

TEST_F(ConnectionPoolTest, silentReplySendsNothingAndKeepsConnection) {
    start(0);
    ask();
    EXPECT_TRUE(isAsked());
    EXPECT_TRUE(isSilent(100));
    EXPECT_EQ(asked, 1);
    ::shutdown(client, SHUT_WR);
    EXPECT_TRUE(receiveBytes(client, 1).empty());
}

TEST_F(ConnectionPoolTest, closesSilentConnectionAfterRequestTimeout) {
    // On a busy machine the timeout may expire before the request is read; then retries with a
    // longer one.
    for (limits.requestMilliseconds = 50; asked == 0 && limits.requestMilliseconds < LONG;
         limits.requestMilliseconds *= 2) {
        pool.reset();
        ::close(client);
        start(0);
        ask();
        EXPECT_TRUE(receiveBytes(client, 1).empty());
    }
    EXPECT_EQ(asked, 1);
}

TEST_F(ConnectionPoolTest, silentConnectionDoesNotDelayShutdown) {
    start(0);
    ask();
    EXPECT_TRUE(isAsked());
    pool.reset();
    EXPECT_TRUE(receiveBytes(client, 1).empty());
}

TEST_F(ConnectionPoolTest, answersMalformedRequestWithoutCallingHandler) {
    start(2);
    sendBytes(client, framed({9}));
    EXPECT_EQ(receiveBytes(client, 9).size(), 8U);
    EXPECT_EQ(asked, 0);
}

}  // namespace VeskLib::Test
