#include <VeskLib/Gui/JudgeAuthority.h>

#include "data/PrimitiveTypeWrapper.h"
#include "data/requestNumbers.h"
#include "tests/contract/ProbeMain.h"

#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <gmock/gmock.h>

#include <iostream>

namespace VeskLib::Test {

using VeskUi::GET_VERSION_INFO;
using VeskUi::SET_BACKUP;

namespace {

const int FUNCTIONS[] = {105, 106};

// Checks the user's session and returns "yes" if the user may use `function`, otherwise "no".
std::string judge(User user, int function) {
    return runWithMain(requestOf(user),
                       [function](ProbeMain& main) {
                           main.guiCheckSession(true);
                           main.connect();
                           std::cout << (main.mayUse(function) ? "yes" : "no");
                           return 0;
                       })
        .output;
}

// Requests a change and then information from the back-end, after the user's right was judged.
ChildResult changeAfterJudging(User user) {
    return runWithMain(requestOf(user), [](ProbeMain& main) {
        main.guiCheckSession(true);
        Gui::CGIRequester& requester = main.connect();
        main.mayUse(105);
        const bool sent =
            requester.setInfo(SET_BACKUP, VeskUi::PrimitiveTypeWrapper<unsigned int>(3));
        std::cout << (sent ? "sent, " : "not sent, ")
                  << (requester.getErrorCode() == 0 ? "no code, " : "code, ");
        VeskUi::VersionInfoPacket versions;
        std::cout << (requester.getInfo(GET_VERSION_INFO, versions) ? "answered" : "not answered");
        return 0;
    });
}

std::vector<unsigned int> numbersOf(const std::vector<BackendRequest>& requests) {
    std::vector<unsigned int> numbers;
    for (const BackendRequest& request : requests) {
        numbers.push_back(request.number);
    }
    return numbers;
}

}  // namespace

TEST(JudgeAuthorityTest, allowsUserWithRight) {
    for (const int function : FUNCTIONS) {
        EXPECT_EQ(judge(User::WITH_RIGHT, function), "yes") << function;
    }
}

TEST(JudgeAuthorityTest, refusesUserWithoutRight) {
    for (const int function : FUNCTIONS) {
        EXPECT_EQ(judge(User::WITHOUT_RIGHT, function), "no") << function;
    }
}

TEST(JudgeAuthorityTest, refusesRequestWithoutSession) {
    const ChildResult result = runWithMain({}, [](ProbeMain& main) {
        main.connect();
        std::cout << (main.mayUse(105) ? "yes" : "no");
        return 0;
    });
    EXPECT_EQ(result.output, "no");
}

TEST(JudgeAuthorityTest, sendsChangeOfAllowedUser) {
    const auto backend = startBackend({{.object = {0, 0}}});
    if (backend == nullptr) {
        GTEST_SKIP() << "platformSpecifics provides no back-end.";
    }
    EXPECT_EQ(changeAfterJudging(User::WITH_RIGHT).output, "sent, no code, answered");
    EXPECT_THAT(numbersOf(backend->stop()), testing::ElementsAre(SET_BACKUP, GET_VERSION_INFO));
}

// The pages process a posted form before they check the display mode, so only the platform can
// prevent changes by a user without the right.
TEST(JudgeAuthorityTest, blocksChangeOfRefusedUser) {
    const auto backend = startBackend({{.object = {0, 0}}});
    if (backend == nullptr) {
        GTEST_SKIP() << "platformSpecifics provides no back-end.";
    }
    EXPECT_EQ(changeAfterJudging(User::WITHOUT_RIGHT).output, "not sent, code, answered");
    EXPECT_THAT(numbersOf(backend->stop()), testing::ElementsAre(GET_VERSION_INFO));
}

}  // namespace VeskLib::Test
