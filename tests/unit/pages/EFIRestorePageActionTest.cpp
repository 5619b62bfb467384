// Tests of the steps posted to EFIRestorePage, except the restore.

#include "tests/unit/support/RestorePageTest.h"

namespace VeskLib::Test {

class EFIRestorePageActionTest : public RestorePageTest {};

TEST_F(EFIRestorePageActionTest, missingStatusShowsBareSkeleton) {
    script.posted = true;
    script.formFields = {{"check_box", ""}, {"pid0", "0"}, {"message", ""}};
    const auto page = makePage();
    EXPECT_EQ(print(*page), "[/usr/local/www/skel/skeleton_efi_rstr.txt\n|onload_function=" +
                                text("onLoadFunction()") + "]");
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_THAT(calls({"getFormData", "getInfo", "setInfo", "new LockedFile", "putLog",
                       "getMessage", "terminate"}),
                testing::ElementsAre("getFormData hidden_status", "terminate"));
}

// Authority is not checked.
TEST_F(EFIRestorePageActionTest, missingStatusIgnoresAuthority) {
    script.posted = true;
    displayMode = 0;
    const auto page = makePage();
    EXPECT_FALSE(page->isError());
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
}

class UnknownStepTest : public EFIRestorePageActionTest,
                        public testing::WithParamInterface<const char*> {};

TEST_P(UnknownStepTest, onlyDisplaysPage) {
    post(GetParam());
    script.formFields["check_box"] = "";
    const auto page = makePage();
    EXPECT_EQ(print(*page), uploadForm("0"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
    EXPECT_THAT(calls({"getFormData", "getInfo", "setInfo", "new LockedFile", "getUpload"}),
                testing::ElementsAre("getFormData hidden_status", "getFormData message"));
}

INSTANTIATE_TEST_SUITE_P(OfTheForm, UnknownStepTest,
                         testing::Values("abc", "0", "", "4", "-1", "-2", "12", "31", "x1", "99"));

struct StepCase {
    const char* status;
    const char* step;
};

std::ostream& operator<<(std::ostream& stream, const StepCase& testCase) {
    return stream << "\"" << testCase.status << "\"";
}

class KnownStepTest : public EFIRestorePageActionTest,
                      public testing::WithParamInterface<StepCase> {};

// The conversion stops at the first character that is not a digit.
TEST_P(KnownStepTest, runsStepOfNumber) {
    post(GetParam().status);
    makePage();
    EXPECT_THAT(calls({"rename", "setInfo", "remove"}),
                testing::ElementsAre(testing::StartsWith(GetParam().step)));
}

INSTANTIATE_TEST_SUITE_P(OfTheForm, KnownStepTest,
                         testing::Values(StepCase{"1", "rename"}, StepCase{"2", "setInfo"},
                                         StepCase{"3", "remove"}, StepCase{"01", "rename"},
                                         StepCase{" 2", "setInfo"}, StepCase{"3abc", "remove"},
                                         StepCase{"+1", "rename"}, StepCase{"2.9", "setInfo"}));

// Upload

class FailedUploadTest : public EFIRestorePageActionTest {
protected:
    FailedUploadTest() { post("1"); }

    void expectUploadFormWith(const std::string& message) {
        const auto page = makePage();
        EXPECT_EQ(page->getMessage(), message);
        EXPECT_TRUE(page->isAlert());
        EXPECT_FALSE(page->isError());
        EXPECT_EQ(print(*page), uploadForm("1"));
        EXPECT_THAT(calls({"getInfo", "new EFIConfFile", "remove", "setSkeletonFile"}),
                    testing::IsEmpty());
    }
};

TEST_F(FailedUploadTest, emptyFileShowsFormAgain) {
    script.uploadSize = 0;
    expectUploadFormWith("message 33/1028");
}

TEST_F(FailedUploadTest, oversizedFileShowsFormAgain) {
    script.uploadSize = 393217;
    expectUploadFormWith("message 63/1028");
}

TEST_F(FailedUploadTest, wrongExtensionShowsFormAgain) {
    script.uploadName = "conf.DAT";
    expectUploadFormWith("message 63/1026");
}

TEST_F(FailedUploadTest, lockFailureShowsFormAgain) {
    script.lockError = 1101;
    expectUploadFormWith("message 45/1101");
}

TEST_F(FailedUploadTest, renameFailureShowsFormAgain) {
    script.renameError = 2;
    expectUploadFormWith("message 45/1043");
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre("putLog 0 lmsg 20003 [Renaming (errno:2) /uploaded]"));
}

TEST_F(FailedUploadTest, exceptionShowsFormAgain) {
    script.uploadPathError = 1103;
    expectUploadFormWith("message 30/1103");
}

// The form checks authority, so the notice comes first.
TEST_F(FailedUploadTest, unauthorizedUserGetsNoticeAndError) {
    script.uploadSize = 0;
    displayMode = 0;
    const auto page = makePage();
    EXPECT_EQ(page->getMessage(), "message 33/1028<br>message 12/1033");
    EXPECT_TRUE(page->isAlert());
    EXPECT_TRUE(page->isError());
    EXPECT_EQ(print(*page), emptyUploadForm);
}

// A successful upload shows the selection; the form is not built.
TEST_F(EFIRestorePageActionTest, successfulUploadReadsOnlyStatus) {
    post("1");
    script.formFields["message"] = "";
    const auto page = makePage();
    EXPECT_THAT(calls({"getFormData"}), testing::ElementsAre("getFormData hidden_status"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
}

// Discard

class DiscardStepTest : public EFIRestorePageActionTest {
protected:
    DiscardStepTest() { post("3"); }
};

TEST_F(DiscardStepTest, removesStagedFileAndShowsForm) {
    const auto page = makePage();
    EXPECT_THAT(calls({"new LockedFile", "remove", "delete", "insertIntoMap form_action", "setInfo",
                       "getInfo", "putLog"}),
                testing::ElementsAre("new LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "remove /board/var/tmp/restored_eficonfS1",
                                     "delete LockedFile(/board/var/tmp/restored_eficonf.lock)",
                                     "insertIntoMap form_action"));
    EXPECT_EQ(print(*page), uploadForm("3"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
    EXPECT_FALSE(page->isError());
}

TEST_F(DiscardStepTest, onlyTracesFailedRemoval) {
    script.removeError = 2;
    const auto page = makePage();
    EXPECT_THAT(calls({"putLog"}),
                testing::ElementsAre(
                    "putLog 0 lmsg 20011 [remove(/board/var/tmp/restored_eficonfS1)] [2]"));
    EXPECT_EQ(print(*page), uploadForm("3"));
    EXPECT_EQ(page->getMessage(), "");
    EXPECT_FALSE(page->isAlert());
}

TEST_F(DiscardStepTest, throwsWhenLockFails) {
    script.lockError = 1101;
    const Calls livingBefore = Scripted::livingObjects();
    EXPECT_EQ(thrownDetail([&] { makePage(); }), 1101);
    EXPECT_EQ(Scripted::livingObjects(), livingBefore);
    EXPECT_THAT(calls({"remove", "insertIntoMap form_action", "terminate"}), testing::IsEmpty());
}

// Authority is checked only when the form is rebuilt.
TEST_F(DiscardStepTest, removesFileOfUnauthorizedUserThenShowsError) {
    displayMode = 0;
    const auto page = makePage();
    EXPECT_THAT(calls({"remove"}),
                testing::ElementsAre("remove /board/var/tmp/restored_eficonfS1"));
    EXPECT_EQ(page->getMessage(), "message 12/1033");
    EXPECT_TRUE(page->isError());
}

}  // namespace VeskLib::Test
