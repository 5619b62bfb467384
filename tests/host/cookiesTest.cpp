#include "platform/host/base/cookies.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

TEST(Cookies, areHttpOnlyAndSameSite) {
    const ScopedEnvironment plain("HTTPS", std::nullopt);
    EXPECT_EQ(Host::makeCookie("session", "x"), "session=x; Path=/; HttpOnly; SameSite=Strict");
    EXPECT_EQ(Host::makeCookie("session", "", 0),
              "session=; Path=/; Max-Age=0; HttpOnly; SameSite=Strict");
}

TEST(Cookies, areSecureOverHTTPS) {
    const ScopedEnvironment secure("HTTPS", "on");
    EXPECT_EQ(Host::cookieName("session"), "__Host-session");
    EXPECT_EQ(Host::makeCookie("language", "ja", 60),
              "__Host-language=ja; Path=/; Max-Age=60; HttpOnly; SameSite=Strict; Secure");
}

}  // namespace VeskLib::Test
