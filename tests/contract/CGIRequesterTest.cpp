#include <VeskLib/Gui/CGIRequester.h>

#include "tests/support/ChildProcess.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

namespace VeskLib::Test {

using Gui::CGIRequester;
using VeskUi::PartitionInfoPacket;

namespace {

const unsigned int GET_PARTITION_INFO = 0x0201002F;

}  // namespace

TEST(CGIRequesterTest, nothingHasFailedBeforeTheFirstRequest) {
    EXPECT_EQ(CGIRequester("").getErrorCode(), 0);
}

TEST(CGIRequesterTest, withoutABackEndEveryRequestFailsSoonAndWithACode) {
    const auto start = std::chrono::steady_clock::now();
    CGIRequester requester("");
    PartitionInfoPacket packet;
    EXPECT_FALSE(requester.getInfo(GET_PARTITION_INFO, packet));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_FALSE(requester.setInfo(0x020100A3, packet));
    EXPECT_NE(requester.getErrorCode(), 0);
    EXPECT_FALSE(packet.isInstalled(0));
    // A web server gives a request half a minute; nobody is there to wait for.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(CGIRequesterTest, aSessionTextThatIsNoneGivesNoPath) {
    for (const char* text : {"", "x", "../../../../etc/passwd", "0123456789abcdef/../x", "\xFF\xFE",
                             "0123456789ABCDEF-0123456789ABCDEF0123456789ABCDEF"}) {
        SCOPED_TRACE(text);
        const std::string identifier = CGIRequester(text).getSessionId();
        EXPECT_EQ(identifier.find_first_of("/."), std::string::npos) << identifier;
    }
}

TEST(CGIRequesterTest, theSessionTextIsCopied) {
    std::string text = "0123456789abcdef-0123456789abcdef0123456789abcdef";
    const CGIRequester requester(text.c_str());
    const std::string identifier = requester.getSessionId();
    text.assign(text.size(), 'z');
    EXPECT_EQ(requester.getSessionId(), identifier);
}

TEST(CGIRequesterTest, theIdentifierTellsNothingOfTheSecret) {
    const std::string secret = "fedcba98765432100123456789abcdef";
    const std::string identifier =
        CGIRequester(("0123456789abcdef-" + secret).c_str()).getSessionId();
    EXPECT_FALSE(identifier.empty());
    EXPECT_EQ(identifier.find(secret.substr(0, 8)), std::string::npos);
    EXPECT_LT(identifier.size(), secret.size());
}

TEST(CGIRequesterTest, withoutABackEndThereAreNoPartitions) {
    const ChildResult result = runInChild([] {
        std::cout << CommonUtil::getMaxPartitionNum() << CommonUtil::getMaxPartitionNum();
        return 0;
    });
    EXPECT_EQ(result.output, "00") << result.errors;
}

}  // namespace VeskLib::Test
