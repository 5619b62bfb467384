// Tests of the steps posted to EFIBackupRestorePage.

#include "tests/support/files.h"
#include "tests/unit/support/CombinedPageTest.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <functional>
#include <stdexcept>

namespace VeskLib::Test {

class EFIBackupRestorePageActionTest : public CombinedPageTest {};

TEST_F(EFIBackupRestorePageActionTest, missingStatusOnlyDisplaysPage) {
    script.posted = true;
    const auto page = makePage();
    EXPECT_EQ(print(*page), form("0"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_THAT(calls({"getFormData", "setInfo", "creat", "new LockedFile"}),
                testing::ElementsAre("getFormData hidden_status", "getFormData message"));
}

class OtherModeTest : public EFIBackupRestorePageActionTest,
                      public testing::WithParamInterface<const char*> {};

// The mode is reset to 0, so that no other number is ever posted back.
TEST_P(OtherModeTest, onlyDisplaysPage) {
    post(GetParam());
    script.formFields["hidden_procname"] = "install";
    const auto page = makePage();
    EXPECT_EQ(print(*page), form("0"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_THAT(calls({"getFormData", "setInfo", "creat", "new LockedFile"}),
                testing::ElementsAre("getFormData hidden_status", "getFormData message"));
}

INSTANTIATE_TEST_SUITE_P(OfTheForm, OtherModeTest,
                         testing::Values("7", "0", "4", "", "abc", "-1", "-2", "BACKUP", "12"));

// Backup

class CombinedBackupTest : public EFIBackupRestorePageActionTest {
protected:
    CombinedBackupTest() { post("3"); }

    const std::string link = "/common/download.cgi?functionID=5&filename=BIOS_20090307_123B.dat";
};

TEST_F(CombinedBackupTest, makesBrowserDownloadFile) {
    const auto page = makePage();
    EXPECT_EQ(print(*page), form("3", "downloadFunction()", link));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_THAT(
        calls({"getFormData", "creat", "setInfo", "new EFIConf", "getFileHeader",
               "insertIntoMap filepath", "insertIntoMap onload_function, ",
               "insertIntoMap form_action", "getInfo", "terminate"}),
        testing::ElementsAre("getFormData hidden_status", "creat /board/var/tmp/efi_backupS1 0666",
                             "setInfo 0x020100A3 [00 00 00 00]",
                             "new EFIConfFile(/board/var/tmp/efi_backupS1)", "getFileHeader",
                             "insertIntoMap filepath", "insertIntoMap onload_function, replacing",
                             "getFormData message", "insertIntoMap form_action", "terminate"));
}

TEST_F(CombinedBackupTest, alwaysBacksUpPartition0) {
    script.formFields.insert(
        {{"radio_button", "3"}, {"pid2", "2"}, {"check_box", ""}, {"hidden_procname", "install"}});
    script.filePartition = 5;
    EXPECT_EQ(print(*makePage()), form("3", "downloadFunction()", link));
    EXPECT_THAT(calls({"setInfo"}), testing::ElementsAre("setInfo 0x020100A3 [00 00 00 00]"));
    EXPECT_EQ(calls(stagedFileCalls), Calls{});
}

TEST_F(CombinedBackupTest, namesUnknownVersionInFileName) {
    script.fileVersion = "-";
    script.fileHeader.saveTime = 1804204800;  // 5 March 2027
    EXPECT_EQ(print(*makePage()),
              form("3", "downloadFunction()",
                   "/common/download.cgi?functionID=5&filename=BIOS_20270305_Unknown.dat"));
}

TEST_F(CombinedBackupTest, refusalShowsNoticeAndForm) {
    script.replies[0x020100A3].errorCode = 1540;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 72/1540");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), form("3"));
}

TEST_F(CombinedBackupTest, throwsWhenFileIsUnreadable) {
    const Calls livingBefore = Scripted::livingObjects();
    script.headerError = 1104;
    EXPECT_EQ(thrownDetail([&] { makePage(); }), 1104);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_THAT(calls({"getMessage", "terminate"}), testing::IsEmpty());
}

TEST_F(CombinedBackupTest, usesOneFilePerSession) {
    script.sessionId = "S2";
    script.pathPrefix = "";
    makePage();
    EXPECT_THAT(calls({"creat"}), testing::ElementsAre("creat /var/tmp/efi_backupS2 0666"));
}

// Upload

class CombinedUploadTest : public EFIBackupRestorePageActionTest {
protected:
    CombinedUploadTest() { post("1"); }

    const Calls onlyMoved = {"new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                             "rename /uploaded /board/var/tmp/restored_eficonfS1",
                             "delete LockedFile(/board/var/tmp/restored_eficonf.lock)"};
};

// Line breaks are written as "\n" in two characters, because the text goes into a script.
TEST_F(CombinedUploadTest, makesBrowserAskWhetherToRestore) {
    const auto page = makePage();
    EXPECT_EQ(print(*page), form("1", "confirmFunction()", "",
                                 "caption 1358:\t\\n\tcaption 9732009-03-07\\n\tcaption "
                                 "13591.23 B"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
    EXPECT_THAT(calls({"rename", "new EFIConf", "getFileHeader", "getString caption 1358",
                       "getString caption 973", "getString caption 1359",
                       "insertIntoMap information", "insertIntoMap onload_function, ",
                       "insertIntoMap form_action", "setInfo", "getInfo", "putLog"}),
                testing::ElementsAre(
                    "rename /uploaded /board/var/tmp/restored_eficonfS1",
                    "new EFIConfFile(/board/var/tmp/restored_eficonfS1)", "getFileHeader",
                    "getString caption 1358", "getString caption 973", "getString caption 1359",
                    "insertIntoMap information", "insertIntoMap onload_function, replacing",
                    "insertIntoMap form_action"));
}

TEST_F(CombinedUploadTest, asksWithLocalDateAndUnescapedVersion) {
    const ScopedEnvironment east("TZ", "JST-9");
    script.fileHeader.saveTime = 1798761600 - 1;  // the last second of 2026 in UTC
    script.fileVersion = "-<\"";
    EXPECT_THAT(print(*makePage()),
                testing::HasSubstr("\n|information=TextString(caption 1358:\t\\n\tcaption 973"
                                   "2027-01-01\\n\tcaption 1359-<\", false, true, 6)\n|"));
}

struct RefusedUpload {
    const char* message;
    std::function<void(Scripted::Script&)> spoil;
};

std::ostream& operator<<(std::ostream& stream, const RefusedUpload& testCase) {
    return stream << testCase.message;
}

class CombinedRefusedUploadTest : public CombinedUploadTest,
                                  public testing::WithParamInterface<RefusedUpload> {};

TEST_P(CombinedRefusedUploadTest, showsNoticeAndForm) {
    GetParam().spoil(script);
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), GetParam().message);
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), form("1"));
    EXPECT_THAT(calls({"new EFIConfFile", "remove"}), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    OfTheForm, CombinedRefusedUploadTest,
    testing::Values(
        RefusedUpload{"message 33/1028", [](auto& script) { script.uploadSize = 0; }},
        RefusedUpload{"message 63/1028", [](auto& script) { script.uploadSize = 393217; }},
        RefusedUpload{"message 63/1026", [](auto& script) { script.uploadName = "BIOS"; }},
        RefusedUpload{"message 45/1101", [](auto& script) { script.lockError = 1101; }},
        RefusedUpload{"message 45/1043", [](auto& script) { script.renameError = 18; }},
        RefusedUpload{"message 30/1103", [](auto& script) { script.uploadPathError = 1103; }}));

class CombinedUnreadableFileTest : public CombinedUploadTest,
                                   public testing::WithParamInterface<bool> {
protected:
    CombinedUnreadableFileTest() { (GetParam() ? script.openError : script.headerError) = 1104; }
};

TEST_P(CombinedUnreadableFileTest, isRemovedAndFormShownAgain) {
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 64/1026");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), form("1"));
    Calls expected = onlyMoved;
    expected.insert(expected.end(), removal.begin(), removal.end());
    EXPECT_EQ(calls(stagedFileCalls), expected);
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
    EXPECT_THAT(calls({"getMessage message 64", "remove", "insertIntoMap form_action"}),
                testing::ElementsAre("getMessage message 64/1026",
                                     "remove /board/var/tmp/restored_eficonfS1",
                                     "insertIntoMap form_action"));
}

INSTANTIATE_TEST_SUITE_P(WhenOpenedOrRead, CombinedUnreadableFileTest, testing::Bool());

TEST_F(CombinedUploadTest, propagatesOtherExceptionsAndKeepsFile) {
    const Calls livingBefore = Scripted::livingObjects();
    Scripted::throwAt("getFileHeader", std::make_exception_ptr(std::runtime_error("other")));
    EXPECT_THROW(makePage(), std::runtime_error);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
}

// Authority is checked only when the form is built.
TEST_F(CombinedUploadTest, stagesUnauthorizedUploadThenShowsError) {
    displayMode = 0;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptyPage);
    EXPECT_EQ(calls(stagedFileCalls), onlyMoved);
}

// Restore and discard

class CombinedRestoreTest : public EFIBackupRestorePageActionTest {
protected:
    CombinedRestoreTest() {
        post("2");
        script.formFields["hidden_procname"] = "install";
    }
};

// Unlike on the restore screen, the file is removed, because a success is also a notice.
TEST_F(CombinedRestoreTest, restoresPartition0AndRemovesFile) {
    script.formFields.insert({{"check_box", ""}, {"pid3", "3"}});
    const auto page = makePage();
    EXPECT_THAT(calls({"getFormData", "setInfo", "getMessage", "new LockedFile", "remove",
                       "delete LockedFile", "insertIntoMap form_action", "putLog", "getInfo"}),
                testing::ElementsAre("getFormData hidden_status", "getFormData hidden_procname",
                                     "setInfo 0x020100A4 [00 01 00]", "getMessage message 70/0",
                                     "new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "remove /board/var/tmp/restored_eficonfS1",
                                     "delete LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "getFormData message", "insertIntoMap form_action",
                                     "getMessage message 354/0"));
    EXPECT_EQ(page->getMessage(), "message 70/0");
    EXPECT_TRUE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(print(*page), form("2"));
}

TEST_F(CombinedRestoreTest, refusalRemovesFile) {
    script.replies[0x020100A4].errorCode = 1540;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 71/1540");
    EXPECT_TRUE(page->isAlert());
    EXPECT_EQ(calls(stagedFileCalls), removal);
    EXPECT_EQ(print(*page), form("2"));
}

TEST_F(CombinedRestoreTest, refusalUsesMessageOfErrorCode) {
    script.replies[0x020100A4].errorCode = 1047;
    EXPECT_EQ(makePage()->getMessage(), "message 250/1047");
}

TEST_F(CombinedRestoreTest, tracesFailedRemovalOfFile) {
    script.removeError = 2;
    EXPECT_EQ(makePage()->getMessage(), "message 70/0");
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre(
                    "putLog 0 lmsg 20011 [remove(/board/var/tmp/restored_eficonfS1)] [2]"));
}

TEST_F(CombinedRestoreTest, throwsWhenLockFails) {
    const Calls livingBefore = Scripted::livingObjects();
    script.lockError = 1101;
    EXPECT_EQ(thrownDetail([&] { makePage(); }), 1101);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_THAT(calls({"setInfo", "remove", "terminate"}),
                testing::ElementsAre("setInfo 0x020100A4 [00 01 00]"));
}

TEST_F(CombinedRestoreTest, messageFieldRemovesFileAgain) {
    script.formFields["message"] = "";
    EXPECT_EQ(makePage()->getMessage(), "message 70/0<br>message 70/0");
    EXPECT_THAT(calls({"remove"}), testing::SizeIs(2));
}

TEST_F(CombinedRestoreTest, discardOnlyRemovesFile) {
    script.formFields["hidden_procname"] = "discard";
    const auto page = makePage();
    EXPECT_EQ(calls(stagedFileCalls), removal);
    EXPECT_THAT(calls({"setInfo", "putLog"}), testing::IsEmpty());
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), form("2"));
}

TEST_F(CombinedRestoreTest, doesNothingWithoutAnswer) {
    script.formFields.erase("hidden_procname");
    const auto page = makePage();
    EXPECT_THAT(calls({"setInfo", "new LockedFile", "remove", "putLog"}), testing::IsEmpty());
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_EQ(print(*page), form("2"));
}

class OtherAnswerTest : public CombinedRestoreTest,
                        public testing::WithParamInterface<const char*> {};

TEST_P(OtherAnswerTest, doesNothing) {
    script.formFields["hidden_procname"] = GetParam();
    const auto page = makePage();
    EXPECT_THAT(calls({"setInfo", "new LockedFile", "remove", "putLog"}), testing::IsEmpty());
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_EQ(print(*page), form("2"));
}

INSTANTIATE_TEST_SUITE_P(OfTheForm, OtherAnswerTest,
                         testing::Values("Install", "INSTALL", "install ", "Discard", "", "1",
                                         "instal", "discards"));

TEST_F(EFIBackupRestorePageActionTest, restoreRemovesFileFromDisk) {
    const TemporaryFolder folder;
    script.realFiles = true;
    script.pathPrefix = folder.path;
    const std::filesystem::path staging = folder.path / "var" / "tmp";
    std::filesystem::create_directories(staging);
    script.uploadPath = staging / "uploaded";
    writeText(script.uploadPath, "content");
    post("1");
    makePage();
    EXPECT_EQ(namesIn(staging), Calls{"restored_eficonfS1"});
    post("2");
    script.formFields["hidden_procname"] = "install";
    Gui::FormInfo second;
    const Gui::EFIBackupRestorePage page(requester, second, messageMgr, &displayMode);
    EXPECT_EQ(page.getMessage(), "message 70/0");
    EXPECT_THAT(namesIn(staging), testing::IsEmpty());
}

}  // namespace VeskLib::Test
