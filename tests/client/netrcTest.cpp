#include "client/login/netrc.h"

#include <gmock/gmock.h>

namespace {

using namespace Efictl;

std::string find(std::string_view text, const std::string& host, const std::string& user = "") {
    const std::optional<Credentials> found = findInNetrc(text, host, user);
    return found ? found->user + ":" + found->password : "none";
}

TEST(NetrcTest, findsTheMachine) {
    const char* const text = "machine a login u password p\nmachine b\n login v\n password q\n";
    EXPECT_EQ(find(text, "a"), "u:p");
    EXPECT_EQ(find(text, "b"), "v:q");
    EXPECT_EQ(find(text, "c"), "none");
}

TEST(NetrcTest, findsTheUser) {
    const char* const text = "machine a login u password p machine a login v password q";
    EXPECT_EQ(find(text, "a", "v"), "v:q");
    EXPECT_EQ(find(text, "a", "w"), "none");
}

TEST(NetrcTest, usesDefaultEntry) {
    EXPECT_EQ(find("machine a login u password p default login d password e", "b"), "d:e");
}

TEST(NetrcTest, skipsCommentsMacrosAndAccounts) {
    EXPECT_EQ(
        find("# machine a password no\nmacdef m\nmachine a password no\n\nmachine a account x "
             "login u password p",
             "a"),
        "u:p");
}

TEST(NetrcTest, readsQuotedWords) {
    EXPECT_EQ(find("machine a login u password \"p q\\\"r\"", "a"), "u:p q\"r");
}

TEST(NetrcTest, ignoresEntriesWithoutPassword) {
    EXPECT_EQ(find("machine a login u", "a"), "none");
    EXPECT_EQ(find("", "a"), "none");
    EXPECT_EQ(find("machine", "a"), "none");
}

}  // namespace
