#include "platform/host/base/SessionShape.h"

#include "tests/backend/support/requests.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

TEST(SessionShape, findsIdentifierInCookieValue) {
    EXPECT_TRUE(isCookieValue(COOKIE));
    EXPECT_EQ(identifierOf(COOKIE), SESSION);
    EXPECT_TRUE(isSessionIdentifier(SESSION));
}

TEST(SessionShape, malformedCookieValueHasNoIdentifier) {
    const std::string cookie = COOKIE;
    EXPECT_EQ(identifierOf(""), "");
    EXPECT_EQ(identifierOf(SESSION), "");
    EXPECT_EQ(identifierOf(cookie + "0"), "");
    EXPECT_EQ(identifierOf(cookie + '\0'), "");
    EXPECT_EQ(identifierOf(" " + cookie), "");
}

TEST(SessionShape, checksEveryCharacter) {
    for (std::size_t position = 0; position < std::string(COOKIE).size(); ++position) {
        for (const char other : {'/', '.', 'A', 'g', ' ', '\0', '\n', ':', '`'}) {
            std::string cookie = COOKIE;
            cookie[position] = other;
            EXPECT_FALSE(isCookieValue(cookie)) << position << " " << static_cast<int>(other);
        }
        EXPECT_FALSE(isCookieValue(std::string(COOKIE).substr(0, position))) << position;
    }
    for (std::size_t position = 0; position < std::string(SESSION).size(); ++position) {
        std::string identifier = SESSION;
        identifier[position] = '/';
        EXPECT_FALSE(isSessionIdentifier(identifier)) << position;
        EXPECT_FALSE(isSessionIdentifier(std::string(SESSION).substr(0, position))) << position;
    }
    EXPECT_FALSE(isSessionIdentifier(std::string(SESSION) + "0"));
}

}  // namespace VeskLib::Test
