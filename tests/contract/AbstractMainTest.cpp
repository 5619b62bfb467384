#include <VeskLib/Gui/AbstractMain.h>

#include "tests/contract/ProbeMain.h"
#include "tests/contract/TraceLines.h"
#include "tests/support/markup.h"

#include <VeskLib/PException.h>

#include <gmock/gmock.h>

#include <iostream>

namespace VeskLib::Test {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

const int DETAIL = 4711;

int throwException(ProbeMain& /*main*/) {
    std::cout << "half a page" << std::flush;
    throw PException(1, 2, 29696, 1, DETAIL, 20019, reinterpret_cast<long>("cause"), 0, 0, 0, 0, 0,
                     0, 0);
}

// Prints "valid" if the session is valid, and nothing otherwise.
int checkSession(ProbeMain& main) {
    main.guiCheckSession(true);
    std::cout << "valid";
    return 0;
}

std::string languageAndSession(const Environment& variables) {
    const ChildResult result = runWithMain(variables, [](ProbeMain& main) {
        std::cout << main.messageSet << ' ' << main.sessionText;
        return 0;
    });
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

}  // namespace

TEST(AbstractMainTest, execRunsDispatcherOnceAndReturnsItsResult) {
    for (const int status : {0, 7, 255}) {
        const ChildResult result = runRequest({}, [status](ProbeMain& /*main*/) {
            std::cerr << "called;";
            return status;
        });
        EXPECT_EQ(result.exitStatus, status);
        EXPECT_EQ(result.errors, "called;");
    }
}

TEST(AbstractMainTest, execSendsAllOutputAsOneResponse) {
    const ChildResult result = runRequest({}, [](ProbeMain& /*main*/) {
        std::cout << "first half," << std::flush << "second half";
        return 0;
    });
    EXPECT_THAT(result.output, ContainsRegex("^([A-Za-z-]+: [^\n]*\n)*[Cc]ontent-[Tt]ype: "));
    EXPECT_EQ(bodyOf(result.output), "first half,second half");
}

TEST(AbstractMainTest, execTurnsExceptionIntoErrorPage) {
    const ChildResult result = runRequest({}, throwException);
    EXPECT_EQ(result.signal, 0) << result.errors;
    const std::string page = bodyOf(result.output);
    EXPECT_THAT(result.output, Not(HasSubstr("half a page")));
    EXPECT_THAT(tagNamesOf(page), testing::IsSupersetOf({"html", "body"}));
    EXPECT_THAT(textOf(page), HasSubstr(std::to_string(DETAIL)));
}

TEST(AbstractMainTest, execTracesException) {
    const TraceLines trace;
    if (!trace.isFile()) {
        GTEST_SKIP() << "The trace log is not a file.";
    }
    runRequest({}, throwException);
    EXPECT_THAT(trace.added(), testing::ElementsAre(HasSubstr(std::to_string(DETAIL))));
}

// GoogleTest runs suites named *DeathTest first. A platform may read the language once per process,
// and the child processes of this test would inherit the language read by an earlier test.
TEST(AbstractMainDeathTest, readsSessionAndLanguageOfRequest) {
    const std::string english = languageAndSession(requestOf(User::WITH_RIGHT, 0));
    const std::string japanese = languageAndSession(requestOf(User::WITH_RIGHT, 1));
    EXPECT_EQ(english.substr(0, 2), "0 ");
    EXPECT_EQ(japanese, "1 " + english.substr(2));
    const std::string other = languageAndSession(requestOf(User::WITHOUT_RIGHT, 0));
    EXPECT_NE(english, other);
    EXPECT_GT(english.size(), 2u);
    EXPECT_GT(other.size(), 2u);
}

TEST(AbstractMainTest, guiCheckSessionReturnsForValidSession) {
    for (const User user : {User::WITH_RIGHT, User::WITHOUT_RIGHT}) {
        const ChildResult result = runRequest(requestOf(user), checkSession);
        EXPECT_EQ(bodyOf(result.output), "valid");
        EXPECT_EQ(result.exitStatus, 0);
    }
}

TEST(AbstractMainTest, guiCheckSessionEndsRequestWithoutValidSession) {
    for (const Environment& variables : requestsWithoutSession()) {
        SCOPED_TRACE(variables.empty() ? "" : variables.begin()->second);
        const ChildResult result = runRequest(variables, checkSession);
        EXPECT_THAT(result.output, Not(HasSubstr("valid")));
        EXPECT_THAT(tagNamesOf(bodyOf(result.output)), testing::IsSupersetOf({"html", "body"}));
    }
}

TEST(AbstractMainTest, errorExitShowsTitleAndMessageAndEndsRequest) {
    const ChildResult result = runRequest(requestOf(User::WITH_RIGHT), [](ProbeMain& main) {
        std::cout << "BEFORE";
        main.errorExit("Screen <title>", "No <b>partition</b> & \"nothing\" else<br>second text");
        std::cout << "AFTER";
        return 0;
    });
    const std::string page = bodyOf(result.output);
    EXPECT_THAT(textOf(page), HasSubstr("Screen <title>"));
    EXPECT_THAT(textOf(page), HasSubstr("No <b>partition</b> & \"nothing\" else"));
    EXPECT_THAT(textOf(page), HasSubstr("second text"));
    EXPECT_THAT(textOf(page), Not(HasSubstr("<br>")));
    EXPECT_THAT(page, Not(HasSubstr("BEFORE")));
    EXPECT_THAT(page, Not(HasSubstr("AFTER")));
}

TEST(AbstractMainTest, errorExitShowsMessageAndCodeAndEndsRequest) {
    const ChildResult result = runRequest(requestOf(User::WITH_RIGHT), [](ProbeMain& main) {
        main.errorExit("The board failed.", DETAIL);
        std::cout << "AFTER";
        return 0;
    });
    EXPECT_THAT(textOf(bodyOf(result.output)), HasSubstr("The board failed."));
    EXPECT_THAT(textOf(bodyOf(result.output)), HasSubstr(std::to_string(DETAIL)));
    EXPECT_THAT(result.output, Not(HasSubstr("AFTER")));
}

}  // namespace VeskLib::Test
