// Tests of EFIBackupPage with a posted form.

#include "pages/EFIBackupPage.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/unit/support/PageTest.h"

#include <cerrno>

namespace VeskLib::Test {

using Gui::EFIBackupPage;

class EFIBackupPageActionTest : public PageTest {
protected:
    EFIBackupPageActionTest() {
        script.posted = true;
        script.formFields = {{"hidden_status", "BACKUP"}, {"radio_button", "3"}};
        script.setPartitions({{true, "name", {}}});
        script.replies[0x020100A3].errorCode = 0;
        script.fileHeader.saveTime = 1794657600;  // 14 November 2026
        script.fileVersion = "1.23 B";
    }

    std::unique_ptr<EFIBackupPage> makePage() {
        return std::make_unique<EFIBackupPage>(requester, formInfo, messageMgr, &displayMode);
    }

    std::string print(const EFIBackupPage& page) {
        const std::size_t before = output().size();
        page.printHTML();
        return output().substr(before);
    }

    ScopedEnvironment timeZone{"TZ", "UTC0"};
    const std::string emptyPage = "[/usr/local/www/skel/skeleton_efi_backup.txt]";
};

TEST_F(EFIBackupPageActionTest, backsUpThenShowsListAndTerminatesForm) {
    const auto page = makePage();
    EXPECT_THAT(calls({"makePage", "getFormData", "getCGIPath", "getSessionId", "creat", "setInfo",
                       "new EFIConf", "insertIntoMap onload", "insertIntoMap filepath", "delete",
                       "getInfo", "insertIntoMap table", "terminate"}),
                testing::ElementsAre(
                    "insertIntoMap onload_function", "makePage", "getFormData hidden_status",
                    "getFormData radio_button", "getCGIPath /var/tmp/efi_backup", "getSessionId",
                    "creat /board/var/tmp/efi_backupS1 0666", "setInfo 0x020100A3 [00 00 00 03]",
                    "new EFIConfFile(/board/var/tmp/efi_backupS1)", "insertIntoMap filepath",
                    "insertIntoMap onload_function, replacing",
                    "delete TextString(onLoadFunction(), false, false, 6)",
                    "delete EFIConfFile(/board/var/tmp/efi_backupS1)", "getInfo 0x0201002F",
                    "insertIntoMap table_pid", "terminate"));
}

TEST_F(EFIBackupPageActionTest, makesBrowserDownloadFile) {
    const auto page = makePage();
    EXPECT_THAT(
        print(*page),
        testing::AllOf(
            testing::HasSubstr("\n|filepath=TextString(/common/download.cgi?functionID=5&filename="
                               "Partition3_20261114_123B.dat, false, true, 6)"),
            testing::HasSubstr(
                "\n|onload_function=TextString(downloadFunction(), false, false, 6)"),
            testing::HasSubstr("\n|pid=TextString(0, false, false, 6)")));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
}

class OtherStatusTest : public EFIBackupPageActionTest,
                        public testing::WithParamInterface<const char*> {};

TEST_P(OtherStatusTest, onlyDisplaysPage) {
    script.formFields["hidden_status"] = GetParam();
    const auto page = makePage();
    EXPECT_THAT(calls({"getFormData", "creat", "setInfo", "getInfo", "putLog"}),
                testing::ElementsAre("getFormData hidden_status", "getInfo 0x0201002F"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_THAT(print(*page),
                testing::HasSubstr("onload_function=TextString(onLoadFunction(), false"));
}

INSTANTIATE_TEST_SUITE_P(AnyButBackup, OtherStatusTest,
                         testing::Values("backup", "Backup", "BACKUP ", "BACKU", "", "1"));

TEST_F(EFIBackupPageActionTest, missingStatusOnlyDisplaysPage) {
    script.formFields.erase("hidden_status");
    const auto page = makePage();
    EXPECT_THAT(calls({"getFormData", "creat", "setInfo", "getInfo", "putLog"}),
                testing::ElementsAre("getFormData hidden_status", "getInfo 0x0201002F"));
    EXPECT_EQ(page->getMessage(), "");
}

TEST_F(EFIBackupPageActionTest, missingChoiceShowsOnlyError) {
    script.formFields.erase("radio_button");
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "lmsg 107 [the screen information]");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(
        calls({"getFormData", "putLog", "lmsg_getmsg", "delete", "creat", "setInfo", "getInfo",
               "terminate"}),
        testing::ElementsAre("getFormData hidden_status", "getFormData radio_button",
                             "putLog 0 getFormData KEY_RADIO_BUTTON error!!", "lmsg_getmsg 107",
                             "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

struct ChoiceCase {
    const char* posted;
    const char* request;
};

std::ostream& operator<<(std::ostream& stream, const ChoiceCase& testCase) {
    return stream << "\"" << testCase.posted << "\"";
}

class ChoiceTest : public EFIBackupPageActionTest,
                   public testing::WithParamInterface<ChoiceCase> {};

// The page passes on what was posted; the back-end knows which partitions it can back up.
TEST_P(ChoiceTest, isPassedOnUnchecked) {
    script.formFields["radio_button"] = GetParam().posted;
    makePage();
    EXPECT_THAT(calls({"setInfo"}), testing::ElementsAre("setInfo 0x020100A3 [" +
                                                         std::string(GetParam().request) + "]"));
}

INSTANTIATE_TEST_SUITE_P(
    OfThePartition, ChoiceTest,
    testing::Values(ChoiceCase{"0", "00 00 00 00"}, ChoiceCase{"abc", "00 00 00 00"},
                    ChoiceCase{"", "00 00 00 00"}, ChoiceCase{"010", "00 00 00 0A"},
                    ChoiceCase{"0x10", "00 00 00 00"}, ChoiceCase{" 5x", "00 00 00 05"},
                    ChoiceCase{"99", "00 00 00 63"}, ChoiceCase{"-1", "FF FF FF FF"}));

TEST_F(EFIBackupPageActionTest, refusedBackupShowsNoticeAndList) {
    script.replies[0x020100A3].errorCode = 1549;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 73/1549");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    const std::string printed = print(*page);
    EXPECT_THAT(printed, testing::HasSubstr("\n|pid=TextString(0, false, false, 6)"));
    EXPECT_THAT(printed, testing::HasSubstr("onload_function=TextString(onLoadFunction(), false"));
    EXPECT_THAT(printed, testing::Not(testing::HasSubstr("filepath")));
}

TEST_F(EFIBackupPageActionTest, appendsListErrorToBackupRefusal) {
    script.replies[0x020100A3].errorCode = 1540;
    script.replies[0x0201002F].errorCode = 1540;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 72/1540<br>lmsg 107 [the partition status]");
    EXPECT_TRUE(page->isAlert());
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptyPage);
}

TEST_F(EFIBackupPageActionTest, emptyListDropsDownload) {
    script.setPartitions({});
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 46/1026");
    EXPECT_EQ(print(*page), emptyPage);
}

// Authority is checked only when the list is rebuilt.
TEST_F(EFIBackupPageActionTest, sendsUnauthorizedBackupThenShowsOnlyError) {
    displayMode = 0;
    const auto page = makePage();
    EXPECT_THAT(
        calls({"creat", "setInfo", "getInfo", "putLog"}),
        testing::ElementsAre(
            "creat /board/var/tmp/efi_backupS1 0666", "setInfo 0x020100A3 [00 00 00 03]",
            "putLog 0 lmsg 20020 [EFIBackupPage::makeDispPage(): Authorization required.]"));
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptyPage);
}

TEST_F(EFIBackupPageActionTest, offersFileThatOnlyBackEndCanWrite) {
    script.creatError = EROFS;
    const auto page = makePage();
    EXPECT_THAT(calls({"putLog", "close"}),
                testing::ElementsAre("putLog 0 lmsg 20011 [EFIBackupPage::backup()::create] [" +
                                         std::to_string(EROFS) + "]",
                                     "close -1"));
    EXPECT_THAT(print(*page), testing::HasSubstr("\n|filepath="));
}

TEST_F(EFIBackupPageActionTest, freesPageWhenFileIsUnreadable) {
    for (auto* error : {&script.openError, &script.headerError}) {
        *error = 1104;
        Scripted::forgetCalls();
        EXPECT_EQ(thrownDetail([&] { makePage(); }), 1104);
        error->reset();
        EXPECT_THAT(calls({"getInfo", "terminate", "printHTML"}), testing::IsEmpty());
        // Only the test's own objects are alive.
        EXPECT_THAT(Scripted::livingObjects(),
                    testing::UnorderedElementsAre("CGIRequester(the session)", "FormInfo()",
                                                  "MessageMgr(0)"));
    }
}

TEST_F(EFIBackupPageActionTest, usesSameFileWithinSession) {
    makePage();
    Gui::FormInfo secondForm;
    const EFIBackupPage secondPage(requester, secondForm, messageMgr, &displayMode);
    EXPECT_THAT(calls({"creat"}), testing::ElementsAre("creat /board/var/tmp/efi_backupS1 0666",
                                                       "creat /board/var/tmp/efi_backupS1 0666"));
}

TEST_F(EFIBackupPageActionTest, usesOneFilePerSession) {
    script.sessionId = "S2";
    script.pathPrefix = "";
    makePage();
    EXPECT_THAT(calls({"creat"}), testing::ElementsAre("creat /var/tmp/efi_backupS2 0666"));
}

}  // namespace VeskLib::Test
