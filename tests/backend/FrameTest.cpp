#include "platform/host/channel/Frame.h"

#include "data/requestNumbers.h"
#include "tests/backend/support/hexadecimalText.h"
#include "tests/backend/support/requests.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

namespace {

const char* const SESSION_BYTES = "30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66";

RequestFrame makeBackupRequest() {
    return {RequestKind::SET, VeskUi::SET_BACKUP, SESSION, {0, 0, 0, 3}, "::1", "7-9", "ab"};
}

void expectEqual(const RequestFrame& actual, const RequestFrame& expected) {
    EXPECT_EQ(actual.kind, expected.kind);
    EXPECT_EQ(actual.number, expected.number);
    EXPECT_EQ(actual.sessionIdentifier, expected.sessionIdentifier);
    EXPECT_EQ(actual.payload, expected.payload);
    EXPECT_EQ(actual.address, expected.address);
    EXPECT_EQ(actual.requestIdentifier, expected.requestIdentifier);
    EXPECT_EQ(actual.stagedFile, expected.stagedFile);
}

// The size of the smallest request: kind, number and four empty strings.
const std::size_t REQUEST_HEAD = 13;

}  // namespace

TEST(Frame, encodesRequest) {
    EXPECT_EQ(toHexadecimal(encode(makeBackupRequest())),
              "02 02 01 00 A3 00 10 " + std::string(SESSION_BYTES) +
                  " 00 03 3A 3A 31 00 03 37 2D 39 00 02 61 62 00 00 00 03");
}

TEST(Frame, encodesRequestWithoutSessionAndPayload) {
    EXPECT_EQ(
        toHexadecimal(encode(RequestFrame{RequestKind::GET, VeskUi::GET_VERSION_INFO, "", {}})),
        "01 02 01 02 01 00 00 00 00 00 00 00 00");
    EXPECT_EQ(toHexadecimal(encode(RequestFrame{RequestKind::LOGIN, 0, "", {0, 0, 0, 0}})),
              "03 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST(Frame, encodesReply) {
    EXPECT_EQ(toHexadecimal(encode(ReplyFrame{0, {}})), "00 00 00 00");
    EXPECT_EQ(toHexadecimal(encode(ReplyFrame{1551, {}})), "00 00 06 0F");
    EXPECT_EQ(toHexadecimal(encode(ReplyFrame{0, {0x41, 0x42}})), "00 00 00 00 41 42");
}

TEST(Frame, decodesRequest) {
    RequestFrame read;
    ASSERT_TRUE(decode(encode(makeBackupRequest()), read));
    expectEqual(read, makeBackupRequest());
}

TEST(Frame, decodesReply) {
    ReplyFrame read;
    ASSERT_TRUE(decode(fromHexadecimal("00 00 04 17 01 02 03"), read));
    EXPECT_EQ(read.errorCode, 1047U);
    EXPECT_EQ(read.payload, (Bytes{1, 2, 3}));
}

TEST(Frame, rejectsRequestCutInHead) {
    const Bytes whole = encode(makeBackupRequest());
    const std::size_t payloadStart = whole.size() - makeBackupRequest().payload.size();
    for (std::size_t size = 0; size < payloadStart; ++size) {
        RequestFrame read = {RequestKind::LOGIN, 77, "untouched", {9}, "a", "b", "c"};
        EXPECT_FALSE(decode(cut(whole, size), read)) << size;
        expectEqual(read, {RequestKind::LOGIN, 77, "untouched", {9}, "a", "b", "c"});
    }
}

// The payload extends to the end of the frame, so a frame with a shorter payload is valid too. The
// payload is checked where it is read.
TEST(Frame, acceptsRequestCutInPayload) {
    const Bytes whole = encode(makeBackupRequest());
    for (std::size_t missing = 0; missing <= 4; ++missing) {
        RequestFrame read;
        ASSERT_TRUE(decode(cut(whole, whole.size() - missing), read)) << missing;
        EXPECT_EQ(read.payload, cut({0, 0, 0, 3}, 4 - missing));
    }
}

TEST(Frame, rejectsReplyShorterThanFourBytes) {
    for (std::size_t size = 0; size < 4; ++size) {
        ReplyFrame read = {5, {6}};
        EXPECT_FALSE(decode(Bytes(size), read)) << size;
        EXPECT_EQ(read.errorCode, 5U);
        EXPECT_EQ(read.payload, (Bytes{6}));
    }
}

TEST(Frame, rejectsUnknownKinds) {
    for (unsigned int kind = 0; kind < 256; ++kind) {
        Bytes bytes(REQUEST_HEAD);
        bytes[0] = static_cast<unsigned char>(kind);
        RequestFrame read;
        EXPECT_EQ(decode(bytes, read), kind >= 1 && kind <= 4) << kind;
    }
}

}  // namespace VeskLib::Test
