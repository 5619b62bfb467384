// Tests of AbstractBackupRestorePage: how it checks and stages an uploaded file.

#include "tests/support/files.h"
#include "tests/unit/support/PageTest.h"
#include "tests/unit/support/TemporaryFolder.h"
#include "tests/unit/support/TestPage.h"

#include <cerrno>
#include <functional>
#include <limits>
#include <stdexcept>

namespace VeskLib::Test {

class UploadTest : public PageTest {
protected:
    UploadTest() {
        script.uploadName = "x.dat";
        script.uploadPath = "/uploaded";
        script.uploadSize = 1;
        Scripted::forgetCalls();
    }

    void upload() { page.upload(stagingPath, lockPath); }

    void expectNotice(const std::string& text) const {
        EXPECT_EQ(page.message, text);
        EXPECT_TRUE(page.alertFlag);
        EXPECT_FALSE(page.errorFlag);
    }

    void expectNoMessage() const {
        EXPECT_EQ(page.message, "");
        EXPECT_FALSE(page.alertFlag);
        EXPECT_FALSE(page.errorFlag);
    }

    TestPage page{requester, formInfo, messageMgr, &displayMode, "/page.txt", 106};
    std::string stagingPath = "/staged";
    std::string lockPath = "/lock";
};

TEST_F(UploadTest, isCheckedThenMovedUnderLock) {
    upload();
    EXPECT_THAT(calls(),
                testing::ElementsAre("getUploadFileSize", "getUploadFileName",
                                     "new LockedFile(/lock)", "getUploadFilePath",
                                     "rename /uploaded /staged", "delete LockedFile(/lock)"));
    expectNoMessage();
}

TEST_F(UploadTest, keepsEarlierNotice) {
    page.addMessage("first");
    upload();
    EXPECT_EQ(page.message, "first");
    EXPECT_FALSE(page.alertFlag);
}

TEST_F(UploadTest, isRejectedWhenEmptyWhateverItsName) {
    script.uploadSize = 0;
    upload();
    EXPECT_THAT(calls(),
                testing::ElementsAre("getUploadFileSize", "lmsg_getmsg 20003",
                                     "putLog 0 lmsg 20003 [Uploading BIOS Conf.(File Size=0)]",
                                     "getMessage message 33/1028"));
    expectNotice("message 33/1028");
}

TEST_F(UploadTest, failureIsAppendedToEarlierMessages) {
    page.addMessage("first");
    script.uploadSize = 0;
    upload();
    expectNotice("first<br>message 33/1028");
}

class AcceptedSizeTest : public UploadTest, public testing::WithParamInterface<unsigned int> {};

TEST_P(AcceptedSizeTest, isMoved) {
    script.uploadSize = GetParam();
    upload();
    EXPECT_THAT(calls({"rename", "putLog"}), testing::ElementsAre("rename /uploaded /staged"));
    expectNoMessage();
}

INSTANTIATE_TEST_SUITE_P(OfTheUpload, AcceptedSizeTest, testing::Values(1, 393215, 393216));

class RefusedSizeTest : public UploadTest, public testing::WithParamInterface<unsigned int> {};

// The size is checked before the name.
TEST_P(RefusedSizeTest, isRejectedAndTracedWithSize) {
    script.uploadSize = GetParam();
    script.uploadName = "x.txt";
    upload();
    EXPECT_THAT(calls(),
                testing::ElementsAre(
                    "getUploadFileSize", "lmsg_getmsg 20020",
                    "putLog 0 lmsg 20020 [AbstractBackupRestorePage::upload: Illegal file size:" +
                        std::to_string(GetParam()) + "]",
                    "getMessage message 63/1028"));
    expectNotice("message 63/1028");
}

INSTANTIATE_TEST_SUITE_P(OfTheUpload, RefusedSizeTest,
                         testing::Values(393217, 0x80000000U,
                                         std::numeric_limits<unsigned int>::max()));

class AcceptedNameTest : public UploadTest, public testing::WithParamInterface<const char*> {};

// The last ".dat" counts. Intended: a name of three characters is accepted, because its length
// minus 4 equals the value for "not found".
TEST_P(AcceptedNameTest, isMoved) {
    script.uploadName = GetParam();
    upload();
    EXPECT_THAT(calls({"new LockedFile", "rename", "putLog"}),
                testing::ElementsAre("new LockedFile(/lock)", "rename /uploaded /staged"));
    expectNoMessage();
}

INSTANTIATE_TEST_SUITE_P(OfTheUpload, AcceptedNameTest,
                         testing::Values("BIOS.dat", ".dat", "a.dat.dat", "x.dat", "a.b.dat",
                                         "C:\\folder.dat\\x.dat", "abc", "dat", "..."));

class RefusedNameTest : public UploadTest, public testing::WithParamInterface<const char*> {};

TEST_P(RefusedNameTest, isRejectedWithoutLockingOrMoving) {
    script.uploadName = GetParam();
    upload();
    EXPECT_THAT(calls(),
                testing::ElementsAre("getUploadFileSize", "getUploadFileName", "lmsg_getmsg 20020",
                                     "putLog 0 lmsg 20020 "
                                     "[AbstractBackupRestorePage::upload: Illegal file extension]",
                                     "getMessage message 63/1026"));
    expectNotice("message 63/1026");
}

INSTANTIATE_TEST_SUITE_P(OfTheUpload, RefusedNameTest,
                         testing::Values("BIOS.DAT", "conf.DAT", "BIOS.dat.txt", "BIOS", "", "a",
                                         "ab", "abcd", "xdat", "x.da", "x.Dat", "x.dat ", "abcde",
                                         "x.datx"));

TEST_F(UploadTest, isNotMovedWithoutLock) {
    script.lockError = 1101;
    upload();
    EXPECT_THAT(calls(),
                testing::ElementsAre("getUploadFileSize", "getUploadFileName",
                                     "LockedFile cannot be locked: /lock", "lmsg_getmsg 20003",
                                     "putLog 0 lmsg 20003 [AbstractBackupRestorePage::upload]",
                                     "getMessage message 45/1101"));
    expectNotice("message 45/1101");
}

// The detail of the lock's exception follows message 45 and is never taken as a back-end error.
TEST_F(UploadTest, lockFailureAlwaysUsesMessage45) {
    script.lockError = 1549;
    upload();
    expectNotice("message 45/1549");
}

// errno is read before any platform call that may change it.
TEST_F(UploadTest, failedMoveIsTracedWithErrnoUnderLock) {
    script.renameError = EXDEV;
    upload();
    EXPECT_THAT(calls(), testing::ElementsAre(
                             "getUploadFileSize", "getUploadFileName", "new LockedFile(/lock)",
                             "getUploadFilePath", "rename /uploaded /staged", "lmsg_getmsg 20003",
                             "putLog 0 lmsg 20003 [Renaming (errno:" + std::to_string(EXDEV) +
                                 ") /uploaded]",
                             "getMessage message 45/1043", "delete LockedFile(/lock)"));
    expectNotice("message 45/1043");
}

TEST_F(UploadTest, releasesLockBeforeReportingException) {
    script.uploadPathError = 1103;
    upload();
    EXPECT_THAT(calls(), testing::ElementsAre(
                             "getUploadFileSize", "getUploadFileName", "new LockedFile(/lock)",
                             "getUploadFilePath", "delete LockedFile(/lock)", "lmsg_getmsg 20003",
                             "putLog 0 lmsg 20003 [AbstractBackupRestorePage::installImage]",
                             "getMessage message 30/1103"));
    expectNotice("message 30/1103");
}

// Unlike that of a lock failure, the detail is taken as a back-end error.
TEST_F(UploadTest, exceptionUnderLockUsesMessageOfErrorCode) {
    script.uploadPathError = 1047;
    upload();
    expectNotice("message 250/1047");
}

class UnknownUploadTest : public UploadTest, public testing::WithParamInterface<const char*> {};

// The platform cannot describe the upload. Nothing is locked, moved or thrown.
TEST_P(UnknownUploadTest, isTracedAndBecomesNotice) {
    Scripted::throwAt(GetParam(), std::make_exception_ptr(Scripted::makeScriptedException(1103)));
    upload();
    EXPECT_THAT(calls({"new LockedFile", "rename", "putLog", "getMessage"}),
                testing::ElementsAre("putLog 0 lmsg 20003 [AbstractBackupRestorePage::upload]",
                                     "getMessage message 30/1103"));
    expectNotice("message 30/1103");
}

// The detail is taken as a back-end error, as under the lock.
TEST_P(UnknownUploadTest, usesMessageOfErrorCode) {
    Scripted::throwAt(GetParam(), std::make_exception_ptr(Scripted::makeScriptedException(1047)));
    upload();
    expectNotice("message 250/1047");
}

TEST_P(UnknownUploadTest, propagatesOtherExceptions) {
    Scripted::throwAt(GetParam(), std::make_exception_ptr(std::runtime_error("other")));
    EXPECT_THROW(upload(), std::runtime_error);
    expectNoMessage();
}

INSTANTIATE_TEST_SUITE_P(OfThePlatform, UnknownUploadTest,
                         testing::Values("getUploadFileSize", "getUploadFileName"));

TEST_F(UploadTest, propagatesOtherExceptionsAndReleasesLock) {
    Scripted::throwAt("getUploadFilePath", std::make_exception_ptr(std::runtime_error("other")));
    EXPECT_THROW(upload(), std::runtime_error);
    EXPECT_THAT(calls({"new LockedFile", "rename", "putLog", "getMessage", "delete"}),
                testing::ElementsAre("new LockedFile(/lock)", "delete LockedFile(/lock)"));
    expectNoMessage();
}

TEST_F(UploadTest, propagatesOtherExceptionsOfLock) {
    Scripted::throwAt("new LockedFile", std::make_exception_ptr(std::runtime_error("other")));
    EXPECT_THROW(upload(), std::runtime_error);
    EXPECT_THAT(calls({"rename", "putLog", "getMessage", "delete"}), testing::IsEmpty());
    expectNoMessage();
}

// Fixture for uploads of real files.
class UploadedFileTest : public UploadTest {
protected:
    UploadedFileTest() {
        script.realFiles = true;
        script.uploadPath = folder.path / "uploaded";
        stagingPath = folder.path / "staged";
        writeText(script.uploadPath, "new content");
    }

    TemporaryFolder folder;
};

TEST_F(UploadedFileTest, becomesStagedFile) {
    upload();
    EXPECT_EQ(namesIn(folder.path), Calls{"staged"});
    EXPECT_EQ(readText(stagingPath), "new content");
    expectNoMessage();
}

TEST_F(UploadedFileTest, replacesEarlierFile) {
    writeText(stagingPath, "old content, which is longer");
    upload();
    EXPECT_EQ(namesIn(folder.path), Calls{"staged"});
    EXPECT_EQ(readText(stagingPath), "new content");
}

TEST_F(UploadedFileTest, keepsEarlierFileWhenRejected) {
    writeText(stagingPath, "old content");
    for (const auto& spoil : std::vector<std::function<void()>>{
             [this] { script.uploadSize = 0; }, [this] { script.uploadSize = 393217; },
             [this] {
                 script.uploadSize = 1;
                 script.uploadName = "x.txt";
             },
             [this] {
                 script.uploadName = "x.dat";
                 script.lockError = 1101;
             },
             [this] {
                 script.lockError.reset();
                 script.uploadPathError = 1103;
             }}) {
        spoil();
        page.alertFlag = false;
        upload();
        EXPECT_TRUE(page.alertFlag);
        EXPECT_EQ(readText(stagingPath), "old content") << page.message;
        EXPECT_EQ(readText(script.uploadPath), "new content") << page.message;
    }
}

TEST_F(UploadedFileTest, isNotMovedIntoMissingFolder) {
    stagingPath = folder.path / "missing" / "staged";
    upload();
    EXPECT_THAT(
        calls({"putLog", "delete"}),
        testing::ElementsAre("putLog 0 lmsg 20003 [Renaming (errno:2) " + script.uploadPath + "]",
                             "delete LockedFile(/lock)"));
    expectNotice("message 45/1043");
    EXPECT_EQ(readText(script.uploadPath), "new content");
}

// The components of an upload form.

TEST_F(UploadTest, usesFileSelectorAndButton) {
    page.putFileSelector();
    page.putUploadButton();
    page.printHTML();
    EXPECT_EQ(
        output(),
        "[/page.txt\n|filename=SelectFile(filename, , form_name, 70, 0)"
        "\n|install=Button(install, caption 499, form_name, 0, \"uploadFunction()\", false)]");
}

TEST_F(UploadTest, messageAloneRaisesNoAlert) {
    page.addMessage("first");
    page.addMessage("second");
    EXPECT_EQ(page.message, "first<br>second");
    EXPECT_FALSE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
}

}  // namespace VeskLib::Test
