#include "platform/host/channel/FrameStream.h"

#include "platform/host/channel/Frame.h"
#include "tests/backend/support/ScriptedServer.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace VeskLib::Test {

using namespace Host;

namespace {

class FrameStreamTest : public testing::Test {
protected:
    FrameStreamTest() {
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            ADD_FAILURE() << "cannot create a socket pair";
        }
    }

    ~FrameStreamTest() override {
        closeEnd(0);
        closeEnd(1);
    }

    void closeEnd(int end) {
        if (ends[end] >= 0) {
            ::close(ends[end]);
            ends[end] = -1;
        }
    }

    int ends[2] = {-1, -1};
};

const Deadline& farDeadline() {
    static const Deadline deadline(600000);
    return deadline;
}

}  // namespace

TEST_F(FrameStreamTest, prependsLength) {
    EXPECT_EQ(withLength({}), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(withLength({7}), (Bytes{0, 0, 0, 1, 7}));
    const Bytes framed = withLength(Bytes(0x012345, 9));
    EXPECT_EQ(framed.size(), 0x012345U + 4);
    EXPECT_EQ(cut(framed, 5), (Bytes{0, 0x01, 0x23, 0x45, 9}));
    EXPECT_EQ(framed.back(), 9);
}

TEST_F(FrameStreamTest, sendsBytesUnchanged) {
    for (const Bytes& bytes : {Bytes{}, Bytes{1}, Bytes{0, 0, 0, 9, 1}}) {
        EXPECT_EQ(sendBytes(ends[0], bytes, farDeadline()), StreamResult::DONE);
        EXPECT_EQ(receiveBytes(ends[1], bytes.size()), bytes);
    }
    EXPECT_FALSE(waitUntilReady(ends[1], POLLIN, Deadline(0)));
}

TEST_F(FrameStreamTest, sendsMoreThanTheSocketBuffers) {
    const Bytes many(3 * LARGEST_FRAME, 7);
    std::thread sending(
        [&] { EXPECT_EQ(sendBytes(ends[0], many, farDeadline()), StreamResult::DONE); });
    EXPECT_TRUE(receiveBytes(ends[1], many.size()) == many);
    sending.join();
}

TEST_F(FrameStreamTest, sendingTimesOutWhenPeerDoesNotRead) {
    EXPECT_EQ(sendBytes(ends[0], Bytes(16 * LARGEST_FRAME), Deadline(20)), StreamResult::TIMEOUT);
}

TEST_F(FrameStreamTest, sendingToClosedPeerReportsBrokenWithoutSignal) {
    closeEnd(1);
    EXPECT_EQ(sendBytes(ends[0], {1}, farDeadline()), StreamResult::BROKEN);
}

TEST_F(FrameStreamTest, sendsAndReceivesFrames) {
    EXPECT_EQ(sendFrame(ends[0], {7, 8}, farDeadline()), StreamResult::DONE);
    EXPECT_EQ(receiveBytes(ends[1], 6), withLength({7, 8}));
    Bytes received;
    sendBytes(ends[0], withLength({5}), farDeadline());
    EXPECT_EQ(receiveFrame(ends[1], received, farDeadline()), StreamResult::DONE);
    EXPECT_EQ(received, Bytes{5});
    EXPECT_EQ(sendFrame(ends[0], Bytes(LARGEST_FRAME + 1), farDeadline()), StreamResult::OVERSIZED);
    EXPECT_FALSE(waitUntilReady(ends[1], POLLIN, Deadline(0)));
}

TEST_F(FrameStreamTest, reportsBrokenForPipe) {
    int pipe[2] = {-1, -1};
    ASSERT_EQ(::pipe(pipe), 0);
    Bytes received = {9};
    EXPECT_EQ(sendBytes(pipe[1], {1}, farDeadline()), StreamResult::BROKEN);
    EXPECT_EQ(receiveFrame(pipe[0], received, farDeadline()), StreamResult::BROKEN);
    EXPECT_EQ(received, Bytes{9});
    ::close(pipe[0]);
    ::close(pipe[1]);
}

// The order "reset" as boardctl sends it.
TEST_F(FrameStreamTest, encodesControlFrame) {
    const RequestFrame order = {RequestKind::CONTROL, 0, "", {'r', 'e', 's', 'e', 't'}};
    EXPECT_EQ(toHexadecimal(withLength(encode(order))),
              "00 00 00 12 04 00 00 00 00 00 00 00 00 00 00 00 00 72 65 73 65 74");
    RequestFrame read;
    ASSERT_TRUE(decode(encode(order), read));
    EXPECT_EQ(read.kind, RequestKind::CONTROL);
    EXPECT_EQ(read.payload, order.payload);
    RequestFrame next;
    EXPECT_FALSE(decode(Bytes{5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, next));
}

}  // namespace VeskLib::Test
