#include "platform/host/storage/biosVersion.h"

#include <gtest/gtest.h>

namespace {

using namespace VeskLib::Host;

TEST(BIOSVersionTest, isUnknownIfItBeginsWithAMinus) {
    EXPECT_FALSE(isKnownVersion("-"));
    EXPECT_FALSE(isKnownVersion("-1.2"));
    EXPECT_TRUE(isKnownVersion("1-2"));
    EXPECT_TRUE(isKnownVersion(""));
}

TEST(BIOSVersionTest, fitsIfTheMajorNumberIsTheSame) {
    EXPECT_TRUE(fitTogether("1.22", "1.23 B"));
    EXPECT_TRUE(fitTogether("1", "1.23 B"));
    EXPECT_FALSE(fitTogether("10.2", "1.2"));
    EXPECT_FALSE(fitTogether("01.2", "1.2"));
    EXPECT_FALSE(fitTogether("", "1.2"));
    EXPECT_FALSE(fitTogether("1.2", ""));
}

TEST(BIOSVersionTest, fitsAnyIfEitherIsUnknown) {
    EXPECT_TRUE(fitTogether("-", "1.2"));
    EXPECT_TRUE(fitTogether("1.2", "-"));
}

}  // namespace
