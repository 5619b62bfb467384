#include <VeskLib/Gui/CommonDefaultPage.h>

#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"

#include <array>
#include <new>

namespace VeskLib::Test {

using Gui::CommonDefaultPage;

// Makes the protected members of the base public.
class OpenPage : public CommonDefaultPage {
public:
    using CommonDefaultPage::alertFlag;
    using CommonDefaultPage::CommonDefaultPage;
    using CommonDefaultPage::componentMap;
    using CommonDefaultPage::displayMode;
    using CommonDefaultPage::errorFlag;
    using CommonDefaultPage::generator;
    using CommonDefaultPage::message;
    using CommonDefaultPage::messageMgr;
    using CommonDefaultPage::traceModule;
};

class CommonDefaultPageTest : public ScriptedTest {
protected:
    Gui::MessageMgr messageMgr{0};
    int displayMode = 2;
};

TEST_F(CommonDefaultPageTest, createsGeneratorAndTraceLog) {
    const OpenPage page(messageMgr, &displayMode, "/page.txt");
    EXPECT_THAT(
        calls({"new HTML", "new Vesk"}),
        testing::ElementsAre("new HTMLCodeGenerator(/page.txt)", "new VeskTrace(1, 2, 29697)"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(CommonDefaultPageTest, initializesEveryField) {
    alignas(OpenPage) std::array<unsigned char, sizeof(OpenPage)> memory;
    memory.fill(0xA5);
    auto* page = new (memory.data()) OpenPage(messageMgr, &displayMode, "/page.txt");
    EXPECT_EQ(&page->messageMgr, &messageMgr);
    EXPECT_EQ(page->displayMode, &displayMode);
    EXPECT_EQ(page->traceModule, 29697);
    EXPECT_TRUE(page->componentMap.empty());
    EXPECT_FALSE(page->errorFlag);
    EXPECT_FALSE(page->alertFlag);
    EXPECT_EQ(page->message, "");
    page->~OpenPage();
}

TEST_F(CommonDefaultPageTest, freesGeneratorWhenTraceLogThrows) {
    const Calls livingBefore = Scripted::livingObjects();
    Scripted::throwAt("new VeskTrace(1, 2, 29697)",
                      std::make_exception_ptr(Scripted::makeScriptedException(1101)));
    EXPECT_EQ(thrownDetail([&] { OpenPage(messageMgr, &displayMode, "/page.txt"); }), 1101);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete HTMLCodeGenerator(/page.txt)"));
}

TEST_F(CommonDefaultPageTest, printsSkeletonWithComponents) {
    OpenPage page(messageMgr, &displayMode, "/page.txt");
    page.componentMap["name"] = new ProbeComponent("1");
    page.printHTML();
    EXPECT_EQ(output(), "[/page.txt\n|name=1]");
}

TEST_F(CommonDefaultPageTest, isErrorWhenErrorFlagIsSet) {
    OpenPage page(messageMgr, &displayMode, "/page.txt");
    page.alertFlag = true;
    EXPECT_FALSE(page.isError());
    page.errorFlag = true;
    EXPECT_TRUE(page.isError());
}

TEST_F(CommonDefaultPageTest, isAlertWhenAlertFlagIsSet) {
    OpenPage page(messageMgr, &displayMode, "/page.txt");
    page.errorFlag = true;
    EXPECT_FALSE(page.isAlert());
    page.alertFlag = true;
    EXPECT_TRUE(page.isAlert());
}

TEST_F(CommonDefaultPageTest, returnsMessage) {
    OpenPage page(messageMgr, &displayMode, "/page.txt");
    page.message = "text";
    EXPECT_EQ(page.getMessage(), "text");
}

TEST_F(CommonDefaultPageTest, buildsNothingByDefault) {
    OpenPage page(messageMgr, &displayMode, "/page.txt");
    Scripted::forgetCalls();
    page.makeDispPage();
    page.makeConfigPage();
    EXPECT_THAT(calls(), testing::IsEmpty());
    EXPECT_TRUE(page.componentMap.empty());
    EXPECT_EQ(output(), "");
}

TEST_F(CommonDefaultPageTest, deletesComponentsInNameOrderThenGenerator) {
    {
        OpenPage page(messageMgr, &displayMode, "/page.txt");
        page.componentMap["b"] = new ProbeComponent("2");
        page.componentMap["a"] = new ProbeComponent("1");
    }
    EXPECT_THAT(calls({"delete"}),
                testing::ElementsAre("delete 1", "delete 2", "delete HTMLCodeGenerator(/page.txt)",
                                     "delete VeskTrace(1, 2, 29697)"));
}

TEST_F(CommonDefaultPageTest, skipsNullComponents) {
    {
        OpenPage page(messageMgr, &displayMode, "/page.txt");
        page.componentMap["a"] = nullptr;
        page.componentMap["b"] = new ProbeComponent("2");
    }
    EXPECT_THAT(calls({"delete 2"}), testing::ElementsAre("delete 2"));
}

}  // namespace VeskLib::Test
