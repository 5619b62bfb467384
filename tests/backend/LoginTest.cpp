#include "platform/host/channel/Login.h"

#include "tests/backend/support/hexadecimalText.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

TEST(Login, encodesRequest) {
    EXPECT_EQ(toHexadecimal(encode(LoginRequest{"admin", "pass", "::1", "ab"})),
              "00 05 61 64 6D 69 6E 00 04 70 61 73 73 00 03 3A 3A 31 00 02 61 62");
}

TEST(Login, encodesAnswer) {
    EXPECT_EQ(toHexadecimal(encode(LoginAnswer{"ab"})), "00 02 61 62");
    EXPECT_EQ(toHexadecimal(encode(LoginAnswer{})), "00 00");
}

TEST(Login, decodesRequest) {
    LoginRequest read;
    ASSERT_TRUE(decode(encode(LoginRequest{"admin", "", "::1", "ab"}), read));
    EXPECT_EQ(read.user, "admin");
    EXPECT_EQ(read.password, "");
    EXPECT_EQ(read.origin, "::1");
    EXPECT_EQ(read.device, "ab");
}

TEST(Login, decodesAnswer) {
    LoginAnswer read;
    ASSERT_TRUE(decode(encode(LoginAnswer{"ab"}), read));
    EXPECT_EQ(read.device, "ab");
}

TEST(Login, rejectsTruncatedRequest) {
    const Bytes whole = encode(LoginRequest{"admin", "pass", "::1", "ab"});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        LoginRequest read = {"before", "kept", "all", "four"};
        EXPECT_FALSE(decode(cut(whole, size), read)) << size;
        EXPECT_EQ(read.user + read.password + read.origin + read.device, "beforekeptallfour");
    }
}

TEST(Login, rejectsTruncatedAnswer) {
    const Bytes whole = encode(LoginAnswer{"ab"});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        LoginAnswer read = {"kept"};
        EXPECT_FALSE(decode(cut(whole, size), read)) << size;
        EXPECT_EQ(read.device, "kept");
    }
}

TEST(Login, rejectsTrailingByte) {
    LoginRequest request;
    EXPECT_FALSE(decode(fromHexadecimal("00 01 61 00 01 62 00 00 00 00 00"), request));
    LoginAnswer answer;
    EXPECT_FALSE(decode(fromHexadecimal("00 00 00"), answer));
}

}  // namespace VeskLib::Test
