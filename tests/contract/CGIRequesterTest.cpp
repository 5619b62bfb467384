#include <VeskLib/Gui/CGIRequester.h>

#include "data/PrimitiveTypeArray.h"
#include "data/requestNumbers.h"
#include "tests/contract/ProbeMain.h"
#include "tests/contract/wire.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include <gmock/gmock.h>

#include <chrono>
#include <iostream>

namespace VeskLib::Test {

using Gui::CGIRequester;
using testing::ElementsAre;
using VeskUi::GET_PARTITION_INFO;
using VeskUi::PartitionInfoPacket;
using VeskUi::SET_RESTORE;

namespace {

// Below the 30 s after which web servers usually end a CGI program, so that the operator gets the
// program's own page.
const std::chrono::seconds LONGEST_REQUEST(25);

// Returns the session text that AbstractMain reads for this user.
std::string sessionTextOf(User user) {
    return runWithMain(requestOf(user),
                       [](ProbeMain& main) {
                           std::cout << main.sessionText;
                           return 0;
                       })
        .output;
}

PartitionInfoPacket samplePacket() {
    PartitionInfoPacket packet;
    packet.addPartition({.installed = true, .name = "first", .nodeIds = {0x10, 0x81}});
    return packet;
}

VeskUi::PrimitiveTypeArray<unsigned char> targets(const Bytes& numbers) {
    VeskUi::PrimitiveTypeArray<unsigned char> array;
    array.records = numbers;
    return array;
}

// Copies the answer and the four bytes after it.
class ProbeObject : public VeskUi::SerializableObject {
public:
    unsigned int getSerialized(unsigned char* /*buffer*/, unsigned int /*size*/) const override {
        return 0;
    }
    unsigned int getSerializedSize() const override { return 0; }
    bool setSerialized(const unsigned char* buffer, unsigned int size) override {
        answer.assign(buffer, buffer + size);
        following.assign(buffer + size, buffer + size + 4);
        return true;
    }

    Bytes answer;
    Bytes following;
};

class CGIRequesterTest : public testing::Test {
protected:
    const std::string sessionText = sessionTextOf(User::WITH_RIGHT);
};

// Fixture for tests that need a back-end.
class CGIRequesterExchangeTest : public CGIRequesterTest {
protected:
    void SetUp() override {
        if (startBackend({{}}) == nullptr) {
            GTEST_SKIP() << "platformSpecifics provides no back-end.";
        }
    }

    void start(const std::vector<BackendReply>& replies) { backend = startBackend(replies); }

    std::unique_ptr<Backend> backend;
};

}  // namespace

TEST_F(CGIRequesterExchangeTest, connectsOnFirstRequest) {
    CGIRequester requester(sessionText.c_str());
    EXPECT_EQ(requester.getErrorCode(), 0);
    start({{.object = serialize(samplePacket())}});
    PartitionInfoPacket packet;
    EXPECT_TRUE(requester.getInfo(GET_PARTITION_INFO, packet));
}

TEST_F(CGIRequesterTest, copiesSessionText) {
    std::string text = sessionText;
    const CGIRequester requester(text.c_str());
    const std::string identifier = requester.getSessionId();
    text.assign(text.size(), 'z');
    EXPECT_EQ(requester.getSessionId(), identifier);
}

TEST_F(CGIRequesterExchangeTest, fillsObjectFromAnswer) {
    start({{.object = serialize(samplePacket())}});
    {
        CGIRequester requester(sessionText.c_str());
        PartitionInfoPacket packet;
        EXPECT_TRUE(requester.getInfo(GET_PARTITION_INFO, packet));
        EXPECT_EQ(requester.getErrorCode(), 0);
        EXPECT_TRUE(packet.isInstalled(0));
        EXPECT_EQ(packet.getPartitionName(0), "first");
    }
    const std::vector<BackendRequest> requests = backend->stop();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].number, GET_PARTITION_INFO);
}

TEST_F(CGIRequesterExchangeTest, fourZeroBytesFollowAnswer) {
    std::vector<BackendReply> replies;
    for (std::size_t size = 0; size < 100; ++size) {
        replies.push_back({.object = Bytes(size, 0xFF)});
    }
    start(replies);
    CGIRequester requester(sessionText.c_str());
    for (const BackendReply& reply : replies) {
        ProbeObject object;
        EXPECT_TRUE(requester.getInfo(GET_PARTITION_INFO, object));
        EXPECT_EQ(object.answer, reply.object);
        EXPECT_THAT(object.following, ElementsAre(0, 0, 0, 0)) << reply.object.size();
    }
}

TEST_F(CGIRequesterExchangeTest, requestFailsWhenObjectRejectsAnswer) {
    Bytes answer = serialize(samplePacket());
    answer.pop_back();
    start({{.object = answer}});
    CGIRequester requester(sessionText.c_str());
    PartitionInfoPacket packet;
    EXPECT_FALSE(requester.getInfo(GET_PARTITION_INFO, packet));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_FALSE(packet.isInstalled(0));
}

TEST_F(CGIRequesterExchangeTest, sendsObject) {
    start({{}});
    const auto object = targets({0, 3, 255});
    std::string identifier;
    {
        CGIRequester requester(sessionText.c_str());
        identifier = requester.getSessionId();
        EXPECT_TRUE(requester.setInfo(SET_RESTORE, object));
        EXPECT_EQ(requester.getErrorCode(), 0);
    }
    const std::vector<BackendRequest> requests = backend->stop();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].number, SET_RESTORE);
    EXPECT_EQ(requests[0].object, serialize(object));
    EXPECT_EQ(requests[0].sessionId, identifier);
}

TEST_F(CGIRequesterExchangeTest, reportsCodeOfRefusal) {
    std::vector<BackendReply> replies;
    const unsigned int codes[] = {1047, 1539, 1549, 1551, 1};
    for (const unsigned int code : codes) {
        replies.insert(replies.end(), 2, {.kind = BackendReply::REFUSE, .errorCode = code});
    }
    start(replies);
    CGIRequester requester(sessionText.c_str());
    PartitionInfoPacket packet;
    for (const unsigned int code : codes) {
        EXPECT_FALSE(requester.getInfo(GET_PARTITION_INFO, packet));
        EXPECT_EQ(requester.getErrorCode(), static_cast<int>(code));
        EXPECT_FALSE(requester.setInfo(SET_RESTORE, targets({1})));
        EXPECT_EQ(requester.getErrorCode(), static_cast<int>(code));
    }
}

TEST_F(CGIRequesterExchangeTest, errorCodeIsThatOfLastRequest) {
    start({{.kind = BackendReply::REFUSE, .errorCode = 1047}, {}});
    CGIRequester requester(sessionText.c_str());
    EXPECT_FALSE(requester.setInfo(SET_RESTORE, targets({1})));
    EXPECT_EQ(requester.getErrorCode(), 1047);
    EXPECT_TRUE(requester.setInfo(SET_RESTORE, targets({1})));
    EXPECT_EQ(requester.getErrorCode(), 0);
}

TEST_F(CGIRequesterExchangeTest, failsQuicklyWithoutBackEnd) {
    start({{}});
    backend.reset();
    const auto begin = std::chrono::steady_clock::now();
    CGIRequester requester(sessionText.c_str());
    PartitionInfoPacket packet;
    EXPECT_FALSE(requester.getInfo(GET_PARTITION_INFO, packet));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_FALSE(requester.setInfo(SET_RESTORE, targets({1})));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, LONGEST_REQUEST);
}

TEST_F(CGIRequesterExchangeTest, timesOutOnSilentBackEnd) {
    start({{.kind = BackendReply::SILENT}});
    const auto begin = std::chrono::steady_clock::now();
    CGIRequester requester(sessionText.c_str());
    EXPECT_FALSE(requester.setInfo(SET_RESTORE, targets({1})));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, LONGEST_REQUEST);
}

TEST_F(CGIRequesterTest, sessionIdentifierIsUsableInFileName) {
    const std::string identifier = CGIRequester(sessionText.c_str()).getSessionId();
    const std::string other =
        CGIRequester(sessionTextOf(User::WITHOUT_RIGHT).c_str()).getSessionId();
    EXPECT_NE(identifier, "");
    EXPECT_NE(identifier, other);
    EXPECT_EQ(identifier, CGIRequester(sessionText.c_str()).getSessionId());
    for (const std::string& text : {identifier, other}) {
        EXPECT_EQ(text.find_first_of("/."), std::string::npos) << text;
        EXPECT_LT(text.size(), 200u);
    }
}

TEST_F(CGIRequesterTest, sessionIdentifierDoesNotContainSecret) {
    const std::string identifier = CGIRequester(sessionText.c_str()).getSessionId();
    EXPECT_EQ(identifier.find(sessionText), std::string::npos);
}

TEST_F(CGIRequesterTest, identifierOfInvalidSessionContainsNoPath) {
    for (const char* text :
         {"", "x", "../../../../etc/passwd", "0123456789abcdef/../x", "\xFF\xFE"}) {
        const std::string identifier = CGIRequester(text).getSessionId();
        EXPECT_EQ(identifier.find_first_of("/."), std::string::npos) << identifier;
    }
}

}  // namespace VeskLib::Test
