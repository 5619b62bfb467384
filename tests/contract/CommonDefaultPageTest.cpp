#include <VeskLib/Gui/CommonDefaultPage.h>

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Gui::CommonDefaultPage;
using Gui::MessageMgr;

namespace {

// Records which builder runs. Like all pages, it is built by its constructor.
class ProbePage : public CommonDefaultPage {
public:
    ProbePage(MessageMgr& messageMgr, int* displayMode)
        : CommonDefaultPage(messageMgr, displayMode, "/var/tmp/no_skeleton.txt") {
        makePage();
    }

    void makeDispPage() override { built += "display"; }
    void makeConfigPage() override { built += "action"; }

    std::string built;
};

std::string builtFor(const std::optional<std::string>& method) {
    const ScopedEnvironment environment("REQUEST_METHOD", method);
    MessageMgr messageMgr(0);
    int displayMode = 2;
    return ProbePage(messageMgr, &displayMode).built;
}

}  // namespace

TEST(MakePageTest, postRunsMakeConfigPage) {
    EXPECT_EQ(builtFor("POST"), "action");
}

TEST(MakePageTest, everyOtherMethodRunsMakeDispPage) {
    EXPECT_EQ(builtFor("GET"), "display");
    EXPECT_EQ(builtFor("HEAD"), "display");
    EXPECT_EQ(builtFor("post"), "display");
    EXPECT_EQ(builtFor(""), "display");
    EXPECT_EQ(builtFor(std::nullopt), "display");
}

}  // namespace VeskLib::Test
