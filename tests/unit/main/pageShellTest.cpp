// Tests of EFIBackupRestoreMain::individualProc(): how it prints a page or shows its error.

#include "tests/unit/support/MainTest.h"

namespace VeskLib::Test {

class PageShellTest : public MainTest {};

TEST_F(PageShellTest, isFilledPrintedAndDeletedInOrder) {
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(
        calls({"new HTMLCodeGenerator(shell", "new HTMLPage", "insertIntoMap body",
               "insertIntoMap css", "insertIntoMap title", "addFunction",
               "insertIntoMap java_script", "insertIntoMap meta_frameid", "printHTML",
               "delete HTMLCodeGenerator(shell", "delete VeskTrace",
               "delete TextString(/default.css", "delete JsFunction", "delete TextString(Backup",
               "delete CGIRequester", "delete MessageMgr"}),
        testing::ElementsAre(
            "new HTMLCodeGenerator(shell 1)", "new HTMLPage(1)", "insertIntoMap body",
            "insertIntoMap css", "insertIntoMap title", "addFunction initialize()",
            "insertIntoMap java_script", "insertIntoMap meta_frameid", "printHTML shell 1",
            "printHTML /usr/local/www/skel/skeleton_efi_backup.txt",
            "printHTML /usr/local/www/skel/skeleton_efi_backup_tbl.txt",
            "delete HTMLCodeGenerator(shell 1)",
            // the page, "css", "java_script", "title"
            "delete VeskTrace(1, 2, 29697)", "delete TextString(/default.css, false, false, 6)",
            "delete JsFunction(onLoadFunction())",
            "delete TextString(Backup/Restore BIOS Configuration, false, false, 6)",
            // the main object
            "delete CGIRequester(the session)", "delete MessageMgr(0)",
            "delete VeskTrace(1, 2, 29696)"));
}

TEST_F(PageShellTest, printsFiveComponents) {
    script.formFields["functionID"] = "106";
    script.posted = true;  // without a step, so the page is almost empty
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(output(),
              "[shell 1\n|body=[/usr/local/www/skel/skeleton_efi_rstr.txt"
              "\n|onload_function=TextString(onLoadFunction(), false, false, 6)]"
              "\n|css=TextString(/default.css, false, false, 6)"
              "\n|java_script=JsFunction(onLoadFunction()){initialize();}"
              "\n|meta_frameid=<meta name=\"FRAME-ID\" content=\"M-RESTOR_EFI_CONF-C-00\">"
              "\n|title=TextString(Backup/Restore BIOS Configuration, false, false, 6)]");
}

TEST_F(PageShellTest, raisesNoticeAfterCallingInitialize) {
    postRefusedBackup();
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(calls({"addFunction", "addAlertFunction", "insertIntoMap java_script"}),
                testing::ElementsAre("addFunction initialize()", "addAlertFunction message 72/1540",
                                     "insertIntoMap java_script"));
    EXPECT_THAT(output(), testing::HasSubstr("\n|java_script=JsFunction(onLoadFunction())"
                                             "{initialize();alert(message 72/1540);}\n|"));
}

TEST_F(PageShellTest, showsErrorInsteadOfPage) {
    script.displayMode = 0;
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_THAT(calls({"errorExit"}),
                testing::ElementsAre("errorExit Backup/Restore BIOS Configuration|"
                                     "message 12/1033"));
    EXPECT_THAT(calls({"new HTMLPage", "printHTML"}), testing::IsEmpty());
    EXPECT_EQ(output(), "");
}

TEST_F(PageShellTest, printsPageDespiteErrorWhenErrorPageReturns) {
    script.errorExitReturns = true;
    script.displayMode = 0;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(calls({"errorExit", "new HTMLPage"}),
                testing::ElementsAre("errorExit Backup/Restore BIOS Configuration|"
                                     "message 12/1033",
                                     "new HTMLPage(1)"));
    EXPECT_THAT(output(), testing::HasSubstr("\n|java_script=JsFunction(onLoadFunction())"
                                             "{initialize();}\n|"));
    EXPECT_THAT(output(),
                testing::HasSubstr("body=[/usr/local/www/skel/skeleton_efi_backup.txt]\n|"));
}

TEST_F(PageShellTest, treatsErrorWithNoticeAsError) {
    postRefusedBackup();
    script.replies[0x0201002F].errorCode = 1540;
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_THAT(calls({"errorExit", "addAlertFunction"}),
                testing::ElementsAre("errorExit Backup/Restore BIOS Configuration|"
                                     "message 72/1540<br>lmsg 107 [the partition status]"));
    EXPECT_EQ(output(), "");
}

TEST_F(PageShellTest, raisesNoticeOfErrorWhenErrorPageReturns) {
    script.errorExitReturns = true;
    postRefusedBackup();
    script.replies[0x0201002F].errorCode = 1540;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(calls({"errorExit", "addAlertFunction"}),
                testing::ElementsAre("errorExit Backup/Restore BIOS Configuration|"
                                     "message 72/1540<br>lmsg 107 [the partition status]",
                                     "addAlertFunction message 72/1540<br>"
                                     "lmsg 107 [the partition status]"));
}

TEST_F(PageShellTest, freesPageAndShellWhenFillingOrPrintingThrows) {
    for (const char* place : {"body", "css", "title", "java_script", "meta_frameid"}) {
        script.insertErrors = {{place, 7}};
        EXPECT_EQ(thrownDetail([] { run(); }), 7) << place;
        EXPECT_THAT(Scripted::livingObjects(), testing::ElementsAre("FormInfo()")) << place;
        EXPECT_EQ(output(), "") << place;
        script.insertErrors.clear();
        // The form data of this request has been terminated; the next one needs its own.
        delete Gui::FormInfo::myInstance;
        Gui::FormInfo::myInstance = nullptr;
    }
    script.skeletonErrors["shell 1"] = 8;
    EXPECT_EQ(thrownDetail([] { run(); }), 8);
    EXPECT_THAT(Scripted::livingObjects(), testing::ElementsAre("FormInfo()"));
    EXPECT_EQ(output(), "");
}

// The exception propagates to exec(), and nothing is printed.
TEST_F(PageShellTest, freesEverythingWhenPageConstructorThrows) {
    postRefusedBackup();
    script.replies[0x020100A3].errorCode = 0;
    script.headerError = 1104;
    EXPECT_EQ(thrownDetail([] { run(); }), 1104);
    EXPECT_THAT(calls({"new HTMLPage", "printHTML", "errorExit"}), testing::IsEmpty());
    EXPECT_THAT(calls({"delete HTMLCode", "delete Partition"}),
                testing::ElementsAre(
                    "delete PartitionInfoPacket()",
                    "delete HTMLCodeGenerator(/usr/local/www/skel/skeleton_efi_backup.txt)"));
    EXPECT_EQ(output(), "");
    EXPECT_THAT(Scripted::livingObjects(), testing::ElementsAre("FormInfo()"));
}

}  // namespace VeskLib::Test
