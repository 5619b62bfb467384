#include "pages/EFIBackupRestorePage.h"

#include "tests/unit/support/CombinedPageTest.h"

#include <algorithm>
#include <array>
#include <new>

namespace VeskLib::Test {

using Gui::EFIBackupRestorePage;

class EFIBackupRestorePageTest : public CombinedPageTest {};

TEST_F(EFIBackupRestorePageTest, hasExpectedConstants) {
    EXPECT_EQ(EFIBackupRestorePage::skeletonFileName,
              "/usr/local/www/skel/skeleton_efi_backup.txt");
    EXPECT_STREQ(EFIBackupRestorePage::FILE_EXTENSION, ".dat");
}

// The form's own order is not fixed: the tests of the printed page cover its components.
TEST_F(EFIBackupRestorePageTest, buildsFormBetweenFileNamesAndTermination) {
    const auto page = makePage();
    const Calls& all = calls();
    const auto first =
        std::find(all.begin(), all.end(), "new TextString(onLoadFunction(), false, false, 6)");
    EXPECT_THAT(Calls(all.begin(), first),
                testing::UnorderedElementsAre(
                    "new HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup.txt)",
                    "new VeskTrace(1, 2, 29697)", "getCGIPath /var/tmp/restored_eficonf",
                    "getSessionId", "getCGIPath /var/tmp/restored_eficonf.lock",
                    "getCGIPath /var/tmp/efi_backup", "getSessionId"));
    EXPECT_THAT(
        calls({"insertIntoMap onload_function", "makePage", "getFormData",
               "insertIntoMap form_action", "terminate"}),
        testing::ElementsAre("insertIntoMap onload_function", "makePage", "getFormData message",
                             "insertIntoMap form_action", "terminate"));
}

// The page does not read the partition table.
TEST_F(EFIBackupRestorePageTest, showsFormOnFirstVisit) {
    script.formFields["hidden_status"] = "3";
    const auto page = makePage();
    EXPECT_EQ(print(*page), form("0"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_THAT(calls({"getFormData", "getInfo", "setInfo", "putLog"}),
                testing::ElementsAre("getFormData message"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(EFIBackupRestorePageTest, initializesEveryField) {
    alignas(EFIBackupRestorePage) std::array<unsigned char, sizeof(EFIBackupRestorePage)> memory;
    memory.fill(0xA5);
    auto* page =
        new (memory.data()) EFIBackupRestorePage(requester, formInfo, messageMgr, &displayMode);
    EXPECT_EQ(print(*page), form("0"));
    page->~EFIBackupRestorePage();
}

class CombinedMessageFieldTest : public EFIBackupRestorePageTest,
                                 public testing::WithParamInterface<const char*> {};

// Unlike on the restore screen, the file is removed, and the text is in the form, not in an alert.
TEST_P(CombinedMessageFieldTest, discardsFileAndReportsRestore) {
    script.formFields["message"] = GetParam();
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 70/0");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page),
              form("0", "onLoadFunction()", "", "", "TextString(message 70/0, false, false, 6)"));
    EXPECT_THAT(calls({"getFormData", "new LockedFile", "remove", "delete LockedFile", "getMessage",
                       "putLog", "insertIntoMap form_action"}),
                testing::ElementsAre("getFormData message",
                                     "new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "remove /board/var/tmp/restored_eficonfS1",
                                     "delete LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "getMessage message 70/0", "insertIntoMap form_action",
                                     "getMessage message 354/0"));
}

INSTANTIATE_TEST_SUITE_P(WithAnyValue, CombinedMessageFieldTest,
                         testing::Values("", "0", "anything"));

TEST_F(EFIBackupRestorePageTest, messageFieldAppendsToEarlierNotice) {
    post("1");
    script.uploadSize = 0;
    script.formFields["message"] = "";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 33/1028<br>message 70/0");
    EXPECT_TRUE(page->isAlert());
}

class UnauthorizedCombinedPageTest : public EFIBackupRestorePageTest,
                                     public testing::WithParamInterface<int> {};

// Unlike on the other screens, there is no trace line, and nothing is built.
TEST_P(UnauthorizedCombinedPageTest, showsOnlyError) {
    displayMode = GetParam();
    script.formFields["message"] = "";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_THAT(calls({"makePage", "getFormData", "lmsg_getmsg", "putLog", "getMessage",
                       "insertIntoMap", "new LockedFile", "delete", "terminate"}),
                testing::ElementsAre(
                    "insertIntoMap onload_function", "makePage", "getMessage message 12/1033",
                    "delete TextString(onLoadFunction(), false, false, 6)", "terminate"));
}

INSTANTIATE_TEST_SUITE_P(AnyDisplayModeButTwo, UnauthorizedCombinedPageTest,
                         testing::Values(0, 1, 3, -2));

TEST_F(EFIBackupRestorePageTest, deletesComponentsThenGeneratorThenTrace) {
    EXPECT_THAT(lastDeletions([this] { return makePage(); }),
                testing::ElementsAre(
                    "delete HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup.txt)",
                    "delete VeskTrace(1, 2, 29697)"));
}

// Wherever building throws, every component is freed.
TEST_F(EFIBackupRestorePageTest, freesPageWhenBuildingThrows) {
    const Calls livingBefore = Scripted::livingObjects();
    for (const char* place : {"onload_function", "form_action", "hidden_status", "download",
                              "item_title", "filename", "install", "message0"}) {
        script.insertErrors = {{place, 7}};
        EXPECT_EQ(thrownDetail([&] { makePage(); }), 7) << place;
        EXPECT_EQ(Scripted::livingObjects(), livingBefore) << place;
    }
}

}  // namespace VeskLib::Test
