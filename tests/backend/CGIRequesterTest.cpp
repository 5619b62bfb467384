#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/PException.h>

#include "data/PrimitiveTypeArray.h"
#include "data/PrimitiveTypeWrapper.h"
#include "data/containerExceptions.h"
#include "data/requestNumbers.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/refusalPayload.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/requests.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Gui;

namespace {

// Accepts or rejects an answer, as the test chooses.
class ReplyContainer : public VeskUi::SerializableObject {
public:
    enum class Way { TAKE, REFUSE, THROW };

    explicit ReplyContainer(Way way) : way(way) {}

    unsigned int getSerialized(unsigned char* /*buffer*/, unsigned int /*size*/) const override {
        throw VeskUi::makeDifferentBufferSize("ReplyContainer::getSerialized");
    }
    unsigned int getSerializedSize() const override { return 1; }

    // Also copies the four bytes after the answer, which must be readable.
    bool setSerialized(const unsigned char* buffer, unsigned int size) override {
        bytes.assign(buffer, buffer + size);
        padding.assign(buffer + size, buffer + size + 4);
        if (way == Way::THROW) {
            throw VeskUi::makeDifferentBufferSize("ReplyContainer::setSerialized");
        }
        return way == Way::TAKE;
    }

    Bytes bytes;
    Bytes padding;

private:
    Way way;
};

class CGIRequesterTest : public RootTest {
protected:
    // Returns a script that receives one request and sends `reply`.
    std::function<void(int)> replyWith(const Host::ReplyFrame& reply) {
        return [this, reply](int client) {
            received = receiveFramed(client);
            sendBytes(client, framed(encode(reply)));
        };
    }

    Bytes received;
};

}  // namespace

TEST_F(CGIRequesterTest, sessionIdentifierIsFirstPartOfCookie) {
    EXPECT_EQ(CGIRequester(COOKIE).getSessionId(), SESSION);
    EXPECT_EQ(CGIRequester("").getSessionId(), "");
    EXPECT_EQ(CGIRequester(nullptr).getSessionId(), "");
    EXPECT_EQ(CGIRequester("../../../etc/passwd").getSessionId(), "");
    EXPECT_EQ(CGIRequester(SESSION).getSessionId(), "");
}

TEST_F(CGIRequesterTest, newRequesterHasNoError) {
    EXPECT_EQ(CGIRequester(COOKIE).getErrorCode(), 0);
}

TEST_F(CGIRequesterTest, getInfoSendsItsNumberAndSession) {
    {
        const ScriptedServer server(replyWith({0, {}}));
        ReplyContainer answer(ReplyContainer::Way::TAKE);
        EXPECT_TRUE(CGIRequester(COOKIE).getInfo(VeskUi::GET_PARTITION_INFO, answer));
    }
    Host::RequestFrame request;
    ASSERT_TRUE(decode(Bytes(received.begin() + 4, received.end()), request));
    EXPECT_EQ(request.kind, Host::RequestKind::GET);
    EXPECT_EQ(request.number, 0x0201002FU);
    EXPECT_EQ(request.sessionIdentifier, SESSION);
    EXPECT_TRUE(request.payload.empty());
}

TEST_F(CGIRequesterTest, setInfoSendsTheObject) {
    {
        const ScriptedServer server(replyWith({0, {}}));
        const VeskUi::PrimitiveTypeWrapper<unsigned int> partition(3);
        EXPECT_TRUE(CGIRequester(COOKIE).setInfo(VeskUi::SET_BACKUP, partition));
    }
    Host::RequestFrame request;
    ASSERT_TRUE(decode(Bytes(received.begin() + 4, received.end()), request));
    EXPECT_EQ(request.kind, Host::RequestKind::SET);
    EXPECT_EQ(request.number, 0x020100A3U);
    EXPECT_EQ(request.payload, (Bytes{0, 0, 0, 3}));
}

TEST_F(CGIRequesterTest, setInfoNamesFileThatThePostedPageShowed) {
    Host::setPostedFile("ab");
    {
        const ScriptedServer server(replyWith({0, {}}));
        const VeskUi::PrimitiveTypeArray<unsigned char> targets;
        EXPECT_TRUE(CGIRequester(COOKIE).setInfo(VeskUi::SET_RESTORE, targets));
    }
    Host::setPostedFile("");
    Host::RequestFrame request;
    ASSERT_TRUE(decode(Bytes(received.begin() + 4, received.end()), request));
    EXPECT_EQ(request.stagedFile, "ab");
}

TEST_F(CGIRequesterTest, keepsRefusalDetailsForTheirCode) {
    const auto refuseWith = [this](const Bytes& payload) {
        const ScriptedServer server(replyWith({1549, payload}));
        const VeskUi::PrimitiveTypeWrapper<unsigned int> partition(3);
        EXPECT_FALSE(CGIRequester(COOKIE).setInfo(VeskUi::SET_BACKUP, partition));
    };
    refuseWith(encode(Host::RefusalDetails{"", {{7, ""}}}));
    ASSERT_EQ(Host::refusalDetails(1549).partitions.size(), 1U);
    EXPECT_EQ(Host::refusalDetails(1549).partitions[0].number, 7U);
    EXPECT_TRUE(Host::refusalDetails(1551).partitions.empty());
    refuseWith({1, 2, 3});
    EXPECT_TRUE(Host::refusalDetails(1549).partitions.empty());
}

TEST_F(CGIRequesterTest, answerIsFollowedByFourZeroBytes) {
    const ScriptedServer server(replyWith({0, {1, 2, 3}}));
    ReplyContainer answer(ReplyContainer::Way::TAKE);
    EXPECT_TRUE(CGIRequester(COOKIE).getInfo(1, answer));
    EXPECT_EQ(answer.bytes, (Bytes{1, 2, 3}));
    EXPECT_EQ(answer.padding, Bytes(4, 0));
}

// PrimitiveTypeWrapper reads four bytes whatever the size, so a shorter answer must not make it
// read past the buffer.
TEST_F(CGIRequesterTest, shortAnswerIsPaddedForTheWrapper) {
    const ScriptedServer server(replyWith({0, {0x12}}));
    VeskUi::PrimitiveTypeWrapper<unsigned int> number(7);
    EXPECT_TRUE(CGIRequester(COOKIE).getInfo(1, number));
    EXPECT_EQ(number.value, 0x12000000U);
}

TEST_F(CGIRequesterTest, requestFailsWhenObjectRejectsAnswer) {
    for (const ReplyContainer::Way way :
         {ReplyContainer::Way::REFUSE, ReplyContainer::Way::THROW}) {
        const ScriptedServer server(replyWith({0, {1, 2, 3}}));
        ReplyContainer answer(way);
        CGIRequester requester(COOKIE);
        EXPECT_FALSE(requester.getInfo(1, answer));
        EXPECT_EQ(requester.getErrorCode(), Host::CHANNEL_BAD_OBJECT);
    }
}

TEST_F(CGIRequesterTest, requestFailsWhenObjectCannotBeSerialized) {
    CGIRequester requester(COOKIE);
    EXPECT_FALSE(requester.setInfo(1, ReplyContainer(ReplyContainer::Way::TAKE)));
    EXPECT_EQ(requester.getErrorCode(), Host::CHANNEL_BAD_OBJECT);
}

TEST_F(CGIRequesterTest, errorCodeIsThatOfTheLastRequest) {
    const ScriptedServer server([](int client) {
        for (const unsigned int code : {1549U, 0U, 1602U}) {
            receiveFramed(client);
            sendBytes(client, framed(encode(Host::ReplyFrame{code, {}})));
        }
    });
    CGIRequester requester(COOKIE);
    VeskUi::PrimitiveTypeArray<unsigned char> targets;
    EXPECT_FALSE(requester.setInfo(VeskUi::SET_RESTORE, targets));
    EXPECT_EQ(requester.getErrorCode(), 1549);
    EXPECT_TRUE(requester.setInfo(VeskUi::SET_RESTORE, targets));
    EXPECT_EQ(requester.getErrorCode(), 0);
    ReplyContainer answer(ReplyContainer::Way::TAKE);
    EXPECT_FALSE(requester.getInfo(1, answer));
    EXPECT_EQ(requester.getErrorCode(), 1602);
    EXPECT_TRUE(answer.padding.empty());
    EXPECT_FALSE(requester.getInfo(1, answer));
    EXPECT_EQ(requester.getErrorCode(), Host::CHANNEL_BROKEN);
}

TEST_F(CGIRequesterTest, requestFailsWhenBackendIsDown) {
    CGIRequester requester(COOKIE);
    ReplyContainer answer(ReplyContainer::Way::TAKE);
    EXPECT_FALSE(requester.getInfo(1, answer));
    EXPECT_EQ(requester.getErrorCode(), Host::CHANNEL_UNREACHABLE);
    EXPECT_FALSE(requester.setInfo(1, VeskUi::PrimitiveTypeWrapper<unsigned int>(0)));
    EXPECT_EQ(requester.getErrorCode(), Host::CHANNEL_UNREACHABLE);
}

}  // namespace VeskLib::Test
