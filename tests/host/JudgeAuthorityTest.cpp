#include <VeskLib/Gui/JudgeAuthority.h>

#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Gui::CGIAuthority;
using Gui::CGIRequester;
using Gui::JudgeAuthority;

namespace {

const int WHOLE_SERVER = -1;
const int ALLOWED_AT_ONCE = 1;

int preCheck(const CGIAuthority& authority, int function) {
    CGIRequester requester("");
    return JudgeAuthority(&authority, function, WHOLE_SERVER).preCheckDisplayMode(requester);
}

// Runs in a child process, because a refusal lasts until the process ends.
int displayMode(const CGIAuthority& authority, int function) {
    return runInChild([&authority, function] {
               return JudgeAuthority(&authority, function, WHOLE_SERVER).getDisplayMode();
           })
        .exitStatus;
}

}  // namespace

TEST(HostJudgeAuthorityTest, allowsEveryFunctionAtOnce) {
    const CGIAuthority authority = {.everyFunction = 1, .functions = nullptr};
    EXPECT_EQ(preCheck(authority, 105), ALLOWED_AT_ONCE);
    EXPECT_EQ(preCheck(authority, 106), ALLOWED_AT_ONCE);
}

TEST(HostJudgeAuthorityTest, checksFunctionListOfOtherUsers) {
    const std::string functions = ",105,106,";
    EXPECT_NE(preCheck({.everyFunction = 0, .functions = &functions}, 105), ALLOWED_AT_ONCE);
    EXPECT_NE(preCheck({}, 105), ALLOWED_AT_ONCE);
}

TEST(HostJudgeAuthorityTest, allowsAListedFunction) {
    const std::string functions = ",5,105,106,";
    const CGIAuthority authority = {.everyFunction = 0, .functions = &functions};
    for (const int function : {5, 105, 106}) {
        EXPECT_EQ(displayMode(authority, function), 2) << function;
    }
}

TEST(HostJudgeAuthorityTest, refusesUnlistedFunction) {
    const std::string functions = ",105,1060,";
    const CGIAuthority authority = {.everyFunction = 0, .functions = &functions};
    for (const int function : {0, 1, 5, 10, 15, 106, 1051, 10, -105, 60}) {
        EXPECT_EQ(displayMode(authority, function), 0) << function;
    }
}

TEST(HostJudgeAuthorityTest, refusesAUserWithoutRights) {
    const std::string none;
    EXPECT_EQ(displayMode({}, 105), 0);
    EXPECT_EQ(displayMode({.everyFunction = 0, .functions = &none}, 105), 0);
}

}  // namespace VeskLib::Test
