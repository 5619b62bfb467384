#include "pages/EFIRestorePage.h"

#include "tests/unit/support/RestorePageTest.h"

#include <array>
#include <new>

namespace VeskLib::Test {

using Gui::EFIRestorePage;

class EFIRestorePageTest : public RestorePageTest {};

TEST_F(EFIRestorePageTest, hasExpectedConstants) {
    EXPECT_EQ(EFIRestorePage::skeletonFileName, "/usr/local/www/skel/skeleton_efi_rstr.txt");
    EXPECT_EQ(EFIRestorePage::skeletonFileNameSel,
              "/usr/local/www/skel/skeleton_efi_rstr_slct.txt");
    EXPECT_STREQ(EFIRestorePage::FILE_EXTENSION, ".dat");
}

// The form's own order is not fixed: the tests of the printed page cover its components.
TEST_F(EFIRestorePageTest, buildsFormBetweenFileNamesAndTermination) {
    const auto page = makePage();
    EXPECT_THAT(
        calls({"new HTMLCodeGenerator", "new VeskTrace", "new PartitionInfoPacket", "get",
               "insertIntoMap onload_function", "makePage", "insertIntoMap form_action",
               "terminate"}),
        testing::ElementsAre("new HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_rstr.txt)",
                             "new VeskTrace(1, 2, 29697)", "new PartitionInfoPacket()",
                             "getCGIPath /var/tmp/restored_eficonf",
                             "getCGIPath /var/tmp/restored_eficonf.lock", "getSessionId",
                             "insertIntoMap onload_function", "makePage", "getFormData message",
                             "insertIntoMap form_action", "getString caption 1002",
                             "getMessage message 354/0", "terminate"));
}

TEST_F(EFIRestorePageTest, showsUploadFormOnFirstVisit) {
    const auto page = makePage();
    EXPECT_EQ(print(*page), uploadForm("0"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isError());
    EXPECT_FALSE(page->isAlert());
}

// "hidden_status" applies to posted steps only.
TEST_F(EFIRestorePageTest, plainDisplayIgnoresStatus) {
    script.formFields["hidden_status"] = "3";
    EXPECT_EQ(print(*makePage()), uploadForm("0"));
    EXPECT_THAT(calls({"getFormData", "remove"}), testing::ElementsAre("getFormData message"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(EFIRestorePageTest, initializesEveryField) {
    alignas(EFIRestorePage) std::array<unsigned char, sizeof(EFIRestorePage)> memory;
    memory.fill(0xA5);
    auto* page = new (memory.data()) EFIRestorePage(requester, formInfo, messageMgr, &displayMode);
    EXPECT_EQ(print(*page), uploadForm("0"));
    page->~EFIRestorePage();
}

// If restoreFinished were left uninitialized, it would be true here, which suppresses the form.
TEST_F(EFIRestorePageTest, initializesRestoreFinished) {
    post("2");
    alignas(EFIRestorePage) std::array<unsigned char, sizeof(EFIRestorePage)> memory;
    memory.fill(1);
    auto* page = new (memory.data()) EFIRestorePage(requester, formInfo, messageMgr, &displayMode);
    EXPECT_EQ(print(*page), uploadForm("2"));
    page->~EFIRestorePage();
}

class MessageFieldTest : public EFIRestorePageTest,
                         public testing::WithParamInterface<const char*> {};

TEST_P(MessageFieldTest, repeatsNoticeOfRestore) {
    script.formFields["message"] = GetParam();
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 70/0");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), uploadForm("0"));
    EXPECT_THAT(calls({"getFormData", "getMessage", "putLog", "new LockedFile", "remove",
                       "insertIntoMap form_action"}),
                testing::ElementsAre("getFormData message", "getMessage message 70/0",
                                     "insertIntoMap form_action", "getMessage message 354/0"));
}

INSTANTIATE_TEST_SUITE_P(WithAnyValue, MessageFieldTest, testing::Values("", "0", "anything"));

TEST_F(EFIRestorePageTest, messageFieldAppendsToEarlierNotice) {
    post("1");
    script.uploadSize = 0;
    script.formFields["message"] = "";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 33/1028<br>message 70/0");
    EXPECT_TRUE(page->isAlert());
    EXPECT_EQ(print(*page), uploadForm("1"));
}

class UnauthorizedRestorePageTest : public EFIRestorePageTest,
                                    public testing::WithParamInterface<int> {};

// The form is built anyway, and dropped at the end of construction.
TEST_P(UnauthorizedRestorePageTest, buildsFormButShowsOnlyError) {
    displayMode = GetParam();
    script.formFields["message"] = "";
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), emptyUploadForm);
    EXPECT_THAT(
        calls({"makePage", "getFormData", "lmsg_getmsg", "putLog", "getMessage", "insertIntoMap",
               "delete", "terminate"}),
        testing::ElementsAre(
            "insertIntoMap onload_function", "makePage", "lmsg_getmsg 20020",
            "putLog 0 lmsg 20020 [EFIRestorePage::makeDispPage(): Authorization required.]",
            "getMessage message 12/1033", "delete TextString(onLoadFunction(), false, false, 6)",
            "insertIntoMap form_action", "insertIntoMap hidden_status", "insertIntoMap message",
            "insertIntoMap filename", "insertIntoMap hidden_functionID",
            "insertIntoMap hidden_procname", "getMessage message 354/0", "insertIntoMap message0",
            "terminate", "delete SelectFile(filename, , form_name, 70, 0)",
            "delete TextString(/maintenance/efi_backup_restore.cgi, false, false, 6)",
            "delete HiddenField(functionID, 106, form_name)",
            "delete HiddenField(hidden_procname, , form_name)",
            "delete HiddenField(hidden_status, 0, form_name)",
            "delete TextString(caption 1002, false, true, 6)",
            "delete TextString(message 354/0, false, true, 6)"));
}

INSTANTIATE_TEST_SUITE_P(AnyDisplayModeButTwo, UnauthorizedRestorePageTest,
                         testing::Values(0, 1, 3, -2));

TEST_F(EFIRestorePageTest, deletesComponentsThenGeneratorThenTrace) {
    EXPECT_THAT(
        lastDeletions([this] { return makePage(); }),
        testing::ElementsAre("delete HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_rstr.txt)",
                             "delete VeskTrace(1, 2, 29697)"));
}

// Wherever building throws, every component is freed.
TEST_F(EFIRestorePageTest, freesPageWhenBuildingThrows) {
    const Calls livingBefore = Scripted::livingObjects();
    for (const char* place : {"onload_function", "form_action", "hidden_status", "filename",
                              "hidden_procname", "message0"}) {
        script.insertErrors = {{place, 7}};
        EXPECT_EQ(thrownDetail([&] { makePage(); }), 7) << place;
        EXPECT_EQ(Scripted::livingObjects(), livingBefore) << place;
    }
}

// Each session has its own staged file; all sessions share one lock.
TEST_F(EFIRestorePageTest, sessionsHaveOwnStagedFilesButShareLock) {
    post("3");
    makePage();
    script.sessionId = "S2";
    Gui::FormInfo secondForm;
    const EFIRestorePage second(requester, secondForm, messageMgr, &displayMode);
    EXPECT_THAT(calls({"new LockedFile", "remove", "delete LockedFile"}),
                testing::ElementsAre("new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "remove /board/var/tmp/restored_eficonfS1",
                                     "delete LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "remove /board/var/tmp/restored_eficonfS2",
                                     "delete LockedFile(/board/var/tmp/restored_eficonf.lock)"));
}

}  // namespace VeskLib::Test
