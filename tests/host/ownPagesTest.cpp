#include "platform/host/web/ownPages.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace VeskLib::Test {

using Host::loginPath;
using Host::pageOfFunction;
using Host::wantedFunction;

TEST(OwnPagesTest, findsPagesOfFunctions) {
    EXPECT_EQ(pageOfFunction("105"), "/maintenance/efi_backup_restore.cgi?functionID=105");
    EXPECT_EQ(pageOfFunction("106"), "/maintenance/efi_backup_restore.cgi?functionID=106");
    EXPECT_EQ(pageOfFunction("110"), "/activity.cgi");
    EXPECT_EQ(loginPath("106"), "/login.cgi?functionID=106");
    EXPECT_EQ(loginPath(""), "/login.cgi");
}

TEST(OwnPagesTest, rejectsOtherDestinations) {
    for (const std::string text :
         {"", "0105", "105 ", " 105", "105&x=y", "105#x", "1050", "5", "-105", "+105", "0x69",
          "//evil.example", "https://evil.example/", "/logout.cgi", "\\\\evil.example",
          "105\r\nX: y", "javascript:alert(1)", "/\t/evil.example"}) {
        EXPECT_EQ(pageOfFunction(text), "") << text;
        EXPECT_EQ(loginPath(text), "/login.cgi") << text;
        const ScopedEnvironment method("REQUEST_METHOD", "GET");
        const ScopedEnvironment query("QUERY_STRING", "functionID=" + text);
        EXPECT_EQ(wantedFunction(), "") << text;
    }
}

TEST(OwnPagesTest, wantsFunctionOfQuery) {
    const ScopedEnvironment method("REQUEST_METHOD", "GET");
    const ScopedEnvironment query("QUERY_STRING", "functionID=106");
    const ScopedEnvironment referer("HTTP_REFERER", "http://127.0.0.1/x?functionID=105");
    EXPECT_EQ(wantedFunction(), "106");
}

TEST(OwnPagesTest, wantsReferringPageOfPost) {
    const ScopedEnvironment method("REQUEST_METHOD", "POST");
    const ScopedEnvironment query("QUERY_STRING", "");
    for (const auto& [from, wanted] : std::map<std::string, std::string>{
             {"http://127.0.0.1:8080/maintenance/efi_backup_restore.cgi?functionID=106", "106"},
             {"http://127.0.0.1:8080/maintenance/efi_backup_restore.cgi", ""},
             {"http://127.0.0.1:8080/?x=y&functionID=106", ""},
             {"", ""}}) {
        const ScopedEnvironment referer("HTTP_REFERER", from);
        EXPECT_EQ(wantedFunction(), wanted) << from;
    }
}

TEST(OwnPagesTest, ignoresRefererOfGet) {
    const ScopedEnvironment method("REQUEST_METHOD", "GET");
    const ScopedEnvironment query("QUERY_STRING", "");
    const ScopedEnvironment referer("HTTP_REFERER", "http://127.0.0.1/x?functionID=105");
    EXPECT_EQ(wantedFunction(), "");
}

}  // namespace VeskLib::Test
