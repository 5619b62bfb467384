#include "pages/AbstractBackupRestorePage.h"

#include "tests/unit/support/PageTest.h"
#include "tests/unit/support/TestPage.h"

#include <array>
#include <cerrno>
#include <new>
#include <type_traits>

namespace VeskLib::Test {

class AbstractBackupRestorePageTest : public PageTest {
protected:
    TestPage page{requester, formInfo, messageMgr, &displayMode, "/page.txt", 106};
};

TEST_F(AbstractBackupRestorePageTest, createsGeneratorAndTraceLog) {
    EXPECT_THAT(calls(), testing::ElementsAre("new HTMLCodeGenerator(/page.txt)",
                                              "new VeskTrace(1, 2, 29697)"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(AbstractBackupRestorePageTest, initializesEveryField) {
    alignas(TestPage) std::array<unsigned char, sizeof(TestPage)> memory;
    memory.fill(0xA5);
    auto* made = new (memory.data())
        TestPage(requester, formInfo, messageMgr, &displayMode, "/page.txt", 105);
    EXPECT_EQ(&made->requester, &requester);
    EXPECT_EQ(&made->formInfo, &formInfo);
    EXPECT_EQ(&made->messageMgr, &messageMgr);
    EXPECT_EQ(made->displayMode, &displayMode);
    EXPECT_EQ(made->functionNumber, 105);
    EXPECT_EQ(page.functionNumber, 106);
    EXPECT_EQ(made->traceModule, 29697);
    EXPECT_TRUE(made->componentMap.empty());
    EXPECT_FALSE(made->errorFlag);
    EXPECT_FALSE(made->alertFlag);
    EXPECT_EQ(made->message, "");
    made->~TestPage();
}

TEST_F(AbstractBackupRestorePageTest, isAbstractAndDefinesFileExtension) {
    EXPECT_TRUE(std::is_abstract_v<Gui::AbstractBackupRestorePage>);
    EXPECT_STREQ(Gui::AbstractBackupRestorePage::FILE_EXTENSION, ".dat");
}

TEST_F(AbstractBackupRestorePageTest, isDeletableAsComponent) {
    auto* made = new TestPage(requester, formInfo, messageMgr, &displayMode, "/other.txt", 105);
    made->putProbe("name");
    Scripted::forgetCalls();
    const Gui::HTMLComponent* component = made;
    delete component;
    EXPECT_THAT(calls(), testing::ElementsAre("delete name", "delete HTMLCodeGenerator(/other.txt)",
                                              "delete VeskTrace(1, 2, 29697)"));
}

TEST_F(AbstractBackupRestorePageTest, noticeRaisesAlertAndKeepsComponents) {
    page.putProbe("name");
    page.addNotice("first");
    EXPECT_EQ(page.message, "first");
    EXPECT_TRUE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
    EXPECT_EQ(page.componentMap.size(), 1u);
}

TEST_F(AbstractBackupRestorePageTest, joinsNoticesWithLineBreak) {
    page.addNotice("first");
    page.addNotice("second");
    EXPECT_EQ(page.message, "first<br>second");
}

TEST_F(AbstractBackupRestorePageTest, errorDeletesComponentsInNameOrder) {
    page.putProbe("c");
    page.putProbe("a");
    page.componentMap["b"] = nullptr;
    page.reportError("broken");
    EXPECT_EQ(page.message, "broken");
    EXPECT_TRUE(page.errorFlag);
    EXPECT_FALSE(page.alertFlag);
    EXPECT_TRUE(page.componentMap.empty());
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete a", "delete c"));
}

TEST_F(AbstractBackupRestorePageTest, appendsErrorToEarlierMessages) {
    page.addNotice("first");
    page.reportError("broken");
    page.reportError("and again");
    EXPECT_EQ(page.message, "first<br>broken<br>and again");
    EXPECT_TRUE(page.alertFlag);
    EXPECT_TRUE(page.errorFlag);
}

struct ErrorCodeCase {
    int defaultMessage;
    int errorCode;
    const char* text;
};

std::ostream& operator<<(std::ostream& stream, const ErrorCodeCase& testCase) {
    return stream << testCase.errorCode << " by default " << testCase.defaultMessage;
}

class ErrorCodeTest : public AbstractBackupRestorePageTest,
                      public testing::WithParamInterface<ErrorCodeCase> {};

TEST_P(ErrorCodeTest, becomesNotice) {
    page.setErrMsg(GetParam().defaultMessage, GetParam().errorCode);
    EXPECT_EQ(page.message, GetParam().text);
    EXPECT_TRUE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
    // Only one text is looked up.
    EXPECT_THAT(calls({"getMessage"}),
                testing::ElementsAre("getMessage " + std::string(GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheBackEnd, ErrorCodeTest,
    testing::Values(
        ErrorCodeCase{71, 1047, "message 250/1047"}, ErrorCodeCase{72, 1047, "message 250/1047"},
        ErrorCodeCase{71, 1539, "message 64/1539"}, ErrorCodeCase{71, 1549, "message 73/1549"},
        ErrorCodeCase{72, 1551, "message 353/1551"}, ErrorCodeCase{71, 1540, "message 71/1540"},
        ErrorCodeCase{72, 1550, "message 72/1550"}, ErrorCodeCase{72, 1046, "message 72/1046"},
        ErrorCodeCase{72, 1048, "message 72/1048"}, ErrorCodeCase{71, 1538, "message 71/1538"},
        ErrorCodeCase{71, 1548, "message 71/1548"}, ErrorCodeCase{71, 1552, "message 71/1552"},
        ErrorCodeCase{30, 0, "message 30/0"}, ErrorCodeCase{30, -1, "message 30/-1"}));

TEST_F(AbstractBackupRestorePageTest, appendsBackEndErrorToEarlierMessages) {
    page.addNotice("first");
    page.setErrMsg(71, 1539);
    EXPECT_EQ(page.message, "first<br>message 64/1539");
}

TEST_F(AbstractBackupRestorePageTest, tracesTextsAtLevelZero) {
    page.traceText(20020, "detail");
    page.traceSystemError("operation", EACCES);
    EXPECT_THAT(calls({"putLog"}), testing::ElementsAre("putLog 0 lmsg 20020 [detail]",
                                                        "putLog 0 lmsg 20011 [operation] [" +
                                                            std::to_string(EACCES) + "]"));
    EXPECT_EQ(page.message, "");
}

TEST_F(AbstractBackupRestorePageTest, tracesAndReportsUnavailableDataWithSameText) {
    page.putProbe("name");
    page.reportUnavailable("the partition status");
    EXPECT_THAT(calls({"lmsg_getmsg", "putLog", "delete"}),
                testing::ElementsAre("lmsg_getmsg 107", "putLog 0 lmsg 107 [the partition status]",
                                     "lmsg_getmsg 107", "delete name"));
    EXPECT_EQ(page.message, "lmsg 107 [the partition status]");
    EXPECT_TRUE(page.errorFlag);
}

TEST_F(AbstractBackupRestorePageTest, putsTextsAndFieldsIntoPage) {
    page.putText("a", "<b>");
    page.putReadyText("b", "<i>");
    page.putHiddenField("c", "field", "value");
    page.printHTML();
    EXPECT_EQ(output(),
              "[/page.txt\n|a=TextString(<b>, false, false, 6)\n|b=TextString(<i>, false, true, 6)"
              "\n|c=HiddenField(field, value, form_name)]");
}

TEST_F(AbstractBackupRestorePageTest, putsComponentsIntoRows) {
    Gui::HTMLItem row("/row.txt");
    TestPage::addToRow(row, "name", std::make_unique<ProbeComponent>("1"));
    row.printHTML();
    EXPECT_EQ(output(), "[/row.txt\n|name=1]");
}

TEST_F(AbstractBackupRestorePageTest, deletesComponentOnceWhenRowRejectsIt) {
    Gui::HTMLItem row("/row.txt");
    script.insertErrors["name"] = 7;
    EXPECT_EQ(thrownDetail(
                  [&] { TestPage::addToRow(row, "name", std::make_unique<ProbeComponent>("1")); }),
              7);
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete 1"));
}

TEST_F(AbstractBackupRestorePageTest, buildsDisplayThenTerminatesForm) {
    page.build = [](TestPage& built) { built.putProbe("name"); };
    Scripted::forgetCalls();
    page.buildPage();
    EXPECT_THAT(calls(), testing::ElementsAre("makePage", "makeDispPage", "new name", "terminate"));
    EXPECT_EQ(page.componentMap.size(), 1u);
}

TEST_F(AbstractBackupRestorePageTest, buildsActionWhenPosted) {
    script.posted = true;
    Scripted::forgetCalls();
    page.buildPage();
    EXPECT_THAT(calls(), testing::ElementsAre("makePage", "makeConfigPage", "terminate"));
}

TEST_F(AbstractBackupRestorePageTest, dropsComponentsBuiltAfterError) {
    page.build = [](TestPage& built) {
        built.reportError("broken");
        built.putProbe("late");
    };
    Scripted::forgetCalls();
    page.buildPage();
    EXPECT_THAT(calls(), testing::ElementsAre("makePage", "makeDispPage", "new late", "terminate",
                                              "delete late"));
    page.printHTML();
    EXPECT_EQ(output(), "[/page.txt]");
}

TEST_F(AbstractBackupRestorePageTest, keepsBuiltPageAfterNotice) {
    page.build = [](TestPage& built) {
        built.putProbe("name");
        built.addNotice("first");
    };
    page.buildPage();
    page.printHTML();
    EXPECT_EQ(output(), "[/page.txt\n|name=name]");
}

}  // namespace VeskLib::Test
