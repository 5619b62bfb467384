// Tests of AbstractBackupRestorePage: how it restores and discards the staged file.

#include "tests/support/files.h"
#include "tests/unit/support/PageTest.h"
#include "tests/unit/support/TemporaryFolder.h"
#include "tests/unit/support/TestPage.h"

#include <cerrno>

namespace VeskLib::Test {

class StagedFileTest : public PageTest {
protected:
    StagedFileTest() { Scripted::forgetCalls(); }

    void restore(const std::vector<unsigned char>& partitions, int function) {
        VeskUi::PrimitiveTypeArray<unsigned char> request;
        request.records = partitions;
        page.restoreUploadedFile(request, finished, function);
    }

    TestPage page{requester, formInfo, messageMgr, &displayMode, "/page.txt", 106};
    bool finished = false;
    std::string stagingPath = "/staged";
    std::string lockPath = "/lock";
};

TEST_F(StagedFileTest, restoreSendsPartitionsAndReportsSuccess) {
    script.replies[0x020100A4].errorCode = 0;
    restore({0, 3, 7}, 106);
    EXPECT_THAT(calls(), testing::ElementsAre("setInfo 0x020100A4 [00 03 00 03 07]",
                                              "getMessage message 70/0"));
    EXPECT_EQ(page.message, "message 70/0");
    EXPECT_TRUE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
}

TEST_F(StagedFileTest, refusedRestoreReportsReason) {
    script.replies[0x020100A4].errorCode = 1540;
    restore({1}, 106);
    EXPECT_THAT(calls(), testing::ElementsAre("setInfo 0x020100A4 [00 01 01]", "getErrorCode",
                                              "getMessage message 71/1540"));
    EXPECT_EQ(page.message, "message 71/1540");
    EXPECT_TRUE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
}

TEST_F(StagedFileTest, refusedRestoreUsesMessageOfErrorCode) {
    script.replies[0x020100A4].errorCode = 1549;
    restore({1}, 106);
    EXPECT_EQ(page.message, "message 73/1549");
}

TEST_F(StagedFileTest, restoreIgnoresOtherArguments) {
    script.replies[0x020100A4].errorCode = 0;
    restore({}, 106);
    finished = true;
    restore({}, 105);
    EXPECT_TRUE(finished);
    finished = false;
    restore({}, 0);
    EXPECT_FALSE(finished);
    EXPECT_THAT(calls({"setInfo"}), testing::Each("setInfo 0x020100A4 [00 00]"));
    EXPECT_EQ(page.message, "message 70/0<br>message 70/0<br>message 70/0");
}

TEST_F(StagedFileTest, isRemovedUnderLock) {
    page.discardUploadedFile(stagingPath, lockPath);
    EXPECT_THAT(calls(), testing::ElementsAre("new LockedFile(/lock)", "remove /staged",
                                              "delete LockedFile(/lock)"));
    EXPECT_EQ(page.message, "");
    EXPECT_FALSE(page.alertFlag);
}

TEST_F(StagedFileTest, failedRemovalIsTracedUnderLockWithoutNotice) {
    script.removeError = ENOENT;
    page.discardUploadedFile(stagingPath, lockPath);
    EXPECT_THAT(calls(),
                testing::ElementsAre(
                    "new LockedFile(/lock)", "remove /staged", "lmsg_getmsg 20011",
                    "putLog 0 lmsg 20011 [remove(/staged)] [" + std::to_string(ENOENT) + "]",
                    "delete LockedFile(/lock)"));
    EXPECT_EQ(page.message, "");
    EXPECT_FALSE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
}

TEST_F(StagedFileTest, removalKeepsEarlierNotice) {
    page.addNotice("first");
    script.removeError = EACCES;
    page.discardUploadedFile(stagingPath, lockPath);
    EXPECT_EQ(page.message, "first");
    EXPECT_TRUE(page.alertFlag);
}

TEST_F(StagedFileTest, staysWhenLockFails) {
    script.lockError = 1101;
    EXPECT_EQ(thrownDetail([&] { page.discardUploadedFile(stagingPath, lockPath); }), 1101);
    EXPECT_THAT(calls(), testing::ElementsAre("LockedFile cannot be locked: /lock"));
    EXPECT_EQ(page.message, "");
    EXPECT_FALSE(page.alertFlag);
}

TEST_F(StagedFileTest, isRemovedFromDisk) {
    const TemporaryFolder folder;
    script.realFiles = true;
    stagingPath = folder.path / "staged";
    writeText(stagingPath, "content");
    page.discardUploadedFile(stagingPath, lockPath);
    EXPECT_FALSE(std::filesystem::exists(stagingPath));
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
    page.discardUploadedFile(stagingPath, lockPath);
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre("putLog 0 lmsg 20011 [remove(" + stagingPath + ")] [" +
                                     std::to_string(ENOENT) + "]"));
}

}  // namespace VeskLib::Test
