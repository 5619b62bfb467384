#include "platform/host/base/SessionShape.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

namespace {

const char* const IDENTIFIER = "0123456789abcdef";
const char* const COOKIE = "0123456789abcdef-00112233445566778899aabbccddeeff";

}  // namespace

TEST(SessionShape, cookieValueHoldsItsIdentifier) {
    EXPECT_TRUE(isCookieValue(COOKIE));
    EXPECT_EQ(identifierOf(COOKIE), IDENTIFIER);
    EXPECT_TRUE(isSessionIdentifier(IDENTIFIER));
}

TEST(SessionShape, malformedCookieValueHasNoIdentifier) {
    const std::string cookie = COOKIE;
    EXPECT_EQ(identifierOf(""), "");
    EXPECT_EQ(identifierOf(IDENTIFIER), "");
    EXPECT_EQ(identifierOf(cookie + "0"), "");
    EXPECT_EQ(identifierOf(cookie + '\0'), "");
    EXPECT_EQ(identifierOf(" " + cookie), "");
}

TEST(SessionShape, everyCharacterCounts) {
    for (std::size_t position = 0; position < std::string(COOKIE).size(); ++position) {
        for (const char other : {'/', '.', 'A', 'g', ' ', '\0', '\n', ':', '`'}) {
            std::string cookie = COOKIE;
            cookie[position] = other;
            EXPECT_FALSE(isCookieValue(cookie)) << position << " " << static_cast<int>(other);
        }
        EXPECT_FALSE(isCookieValue(std::string(COOKIE).substr(0, position))) << position;
    }
    for (std::size_t position = 0; position < std::string(IDENTIFIER).size(); ++position) {
        std::string identifier = IDENTIFIER;
        identifier[position] = '/';
        EXPECT_FALSE(isSessionIdentifier(identifier)) << position;
        EXPECT_FALSE(isSessionIdentifier(std::string(IDENTIFIER).substr(0, position))) << position;
    }
    EXPECT_FALSE(isSessionIdentifier(std::string(IDENTIFIER) + "0"));
}

}  // namespace VeskLib::Test
