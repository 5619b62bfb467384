#include "platform/host/base/SessionShape.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::identifierOf;
using Host::isCookieValue;
using Host::isSessionIdentifier;

namespace {

const std::string IDENTIFIER = "0123456789abcdef";
const std::string TOKEN = "00112233445566778899aabbccddeeff";
const std::string COOKIE = IDENTIFIER + "-" + TOKEN;

}  // namespace

TEST(SessionShapeTest, findsIdentifierOfWellFormedValue) {
    EXPECT_TRUE(isCookieValue(COOKIE));
    EXPECT_TRUE(isSessionIdentifier(IDENTIFIER));
    EXPECT_EQ(identifierOf(COOKIE), IDENTIFIER);
}

TEST(SessionShapeTest, rejectsOtherLengths) {
    for (std::size_t length = 0; length < COOKIE.size(); ++length) {
        EXPECT_FALSE(isCookieValue(COOKIE.substr(0, length))) << length;
        EXPECT_EQ(identifierOf(COOKIE.substr(0, length)), "");
    }
    EXPECT_FALSE(isCookieValue(COOKIE + "0"));
    EXPECT_FALSE(isSessionIdentifier(IDENTIFIER.substr(1)));
    EXPECT_FALSE(isSessionIdentifier(IDENTIFIER + "0"));
    EXPECT_FALSE(isSessionIdentifier(COOKIE));
    EXPECT_FALSE(isSessionIdentifier(""));
}

TEST(SessionShapeTest, rejectsWrongCharacterInAnyPlace) {
    for (std::size_t i = 0; i < COOKIE.size(); ++i) {
        for (int value = 0; value < 256; ++value) {
            std::string changed = COOKIE;
            changed[i] = static_cast<char>(value);
            const bool digit = (value >= '0' && value <= '9') || (value >= 'a' && value <= 'f');
            const bool sound = i == IDENTIFIER.size() ? value == '-' : digit;
            ASSERT_EQ(isCookieValue(changed), sound) << i << " " << value;
            ASSERT_EQ(identifierOf(changed), sound ? changed.substr(0, 16) : "");
            if (i < IDENTIFIER.size()) {
                ASSERT_EQ(isSessionIdentifier(changed.substr(0, 16)), digit);
            }
        }
    }
}

TEST(SessionShapeTest, rejectsPaths) {
    for (const char* text : {"../../etc/passwd", "..............//", "/var/lib/session"}) {
        EXPECT_FALSE(isSessionIdentifier(text));
        EXPECT_EQ(identifierOf(text + std::string("-") + TOKEN), "");
    }
}

}  // namespace VeskLib::Test
