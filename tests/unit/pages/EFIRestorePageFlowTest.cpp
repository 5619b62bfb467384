// Tests of EFIRestorePage over several requests, with the staged file on disk.

#include "tests/support/files.h"
#include "tests/unit/support/SelectionTest.h"
#include "tests/unit/support/TemporaryFolder.h"

namespace VeskLib::Test {

class EFIRestorePageFlowTest : public RestorePageTest {
protected:
    EFIRestorePageFlowTest() {
        script.realFiles = true;
        script.pathPrefix = folder.path;
        std::filesystem::create_directories(folder.path / "var" / "tmp");
        script.posted = true;
    }

    // Sends one request to the screen, and returns the printed page.
    std::string request(const std::map<std::string, std::string>& fields) {
        script.formFields = fields;
        Gui::FormInfo form;
        const Gui::EFIRestorePage page(requester, form, messageMgr, &displayMode);
        message = page.getMessage();
        return print(page);
    }

    std::string upload(const std::string& content) {
        script.uploadPath = folder.path / "var" / "tmp" / "uploaded";
        writeText(script.uploadPath, content);
        return request({{"hidden_status", "1"}});
    }

    Calls files() const { return namesIn(folder.path / "var" / "tmp"); }
    std::string staged(const std::string& session = "S1") const {
        return readText(folder.path / "var" / "tmp" / ("restored_eficonf" + session));
    }

    TemporaryFolder folder;
    std::string message;
};

TEST_F(EFIRestorePageFlowTest, keepsFileAfterRestoreUntilDiscarded) {
    script.posted = false;
    EXPECT_EQ(request({}), uploadForm("0"));
    script.posted = true;
    EXPECT_THAT(upload("content"),
                testing::StartsWith("[/usr/local/www/skel/skeleton_efi_rstr_slct"));
    EXPECT_EQ(message, "");
    EXPECT_EQ(files(), Calls{"restored_eficonfS1"});
    EXPECT_EQ(request({{"hidden_status", "2"}, {"pid0", "0"}}), uploadForm("2"));
    EXPECT_EQ(message, "message 70/0");
    EXPECT_EQ(staged(), "content");
    EXPECT_EQ(request({{"hidden_status", "3"}}), uploadForm("3"));
    EXPECT_EQ(message, "");
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(EFIRestorePageFlowTest, keepsFileAfterRefusedRestore) {
    upload("content");
    script.replies[0x020100A4].errorCode = 1549;
    request({{"hidden_status", "2"}, {"pid0", "0"}});
    EXPECT_EQ(message, "message 73/1549");
    EXPECT_EQ(staged(), "content");
}

TEST_F(EFIRestorePageFlowTest, newUploadReplacesFile) {
    upload("the first, which is longer");
    EXPECT_THAT(upload("second"), testing::HasSubstr("skeleton_efi_rstr_slct.txt"));
    EXPECT_EQ(files(), Calls{"restored_eficonfS1"});
    EXPECT_EQ(staged(), "second");
}

TEST_F(EFIRestorePageFlowTest, keepsEarlierFileAfterRejectedUpload) {
    upload("content");
    script.uploadSize = 393217;
    EXPECT_EQ(upload("too large"), uploadForm("1"));
    EXPECT_EQ(staged(), "content");
}

TEST_F(EFIRestorePageFlowTest, unreadableUploadLeavesNoFile) {
    upload("content");
    script.headerError = 1104;
    EXPECT_EQ(upload("unreadable"), uploadForm("2", true));
    EXPECT_EQ(message, "message 64/1026");
    EXPECT_THAT(files(), testing::IsEmpty());
}

TEST_F(EFIRestorePageFlowTest, keepsFileAfterPlainDisplayOrUnknownStep) {
    upload("content");
    request({{"hidden_status", "abc"}});
    request({});
    script.posted = false;
    request({{"message", ""}});
    EXPECT_EQ(staged(), "content");
}

TEST_F(EFIRestorePageFlowTest, sessionDiscardsOnlyItsOwnFile) {
    upload("first session's");
    script.sessionId = "S2";
    upload("second session's");
    EXPECT_EQ(staged("S1"), "first session's");
    EXPECT_EQ(staged("S2"), "second session's");
    request({{"hidden_status", "3"}});
    EXPECT_EQ(files(), Calls{"restored_eficonfS1"});
}

TEST_F(EFIRestorePageFlowTest, sendsRestoreWithoutUploadToBackEnd) {
    script.replies[0x020100A4].errorCode = 1539;
    EXPECT_EQ(request({{"hidden_status", "2"}, {"pid0", "0"}}), uploadForm("2"));
    EXPECT_EQ(message, "message 64/1539");
    EXPECT_THAT(calls({"setInfo"}), testing::ElementsAre("setInfo 0x020100A4 [00 01 00]"));
}

}  // namespace VeskLib::Test
