// Tests of EFIBackupRestoreMain::individualProc(): which page a request gets, and who is refused.

#include "tests/unit/support/MainTest.h"

namespace VeskLib::Test {

class RequestDispatchTest : public MainTest {
protected:
    // Returns the calls with which the dispatcher decides about the request.
    static Calls decisions() {
        return calls({"guiCheckSession", "new MessageMgr", "new CGIRequester",
                      "getFormData functionID", "preCheck", "getDisplayMode", "putLog",
                      "errorExit"});
    }

    // Returns the skeletons for which generators were created. Every page creates one, as does the
    // shell.
    static Calls generators() {
        const std::string beginning = "new HTMLCodeGenerator(";
        Calls skeletons = calls({beginning});
        for (std::string& skeleton : skeletons) {
            skeleton = skeleton.substr(beginning.size(), skeleton.size() - beginning.size() - 1);
        }
        return skeletons;
    }
};

TEST_F(RequestDispatchTest, checksSessionFirst) {
    script.sessionIsValid = false;
    EXPECT_EQ(endedBy([] { run(); }), "guiCheckSession");
    EXPECT_THAT(decisions(), testing::ElementsAre("guiCheckSession true"));
    EXPECT_EQ(output(), "");
}

TEST_F(RequestDispatchTest, runsStepsInOrder) {
    script.sessionText = "from the cookie";
    script.messageSet = 1;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(decisions(), testing::ElementsAre(
                                 "guiCheckSession true", "new MessageMgr(1)",
                                 "new CGIRequester(from the cookie)", "getFormData functionID",
                                 "preCheckDisplayMode(0, 105, -1)", "getDisplayMode(0, 105, -1)"));
}

TEST_F(RequestDispatchTest, judgesAuthorityOfMainObject) {
    script.authority.everyFunction = 7;
    run();
    EXPECT_THAT(
        calls({"preCheck", "getDisplayMode"}),
        testing::ElementsAre("preCheckDisplayMode(7, 105, -1)", "getDisplayMode(7, 105, -1)"));
}

TEST_F(RequestDispatchTest, storesConvertedFunctionNumber) {
    script.formFields["functionID"] = "0105abc";
    OpenMain object;
    EXPECT_EQ(object.individualProc(), 0);
    EXPECT_EQ(object.functionId, 105);
    EXPECT_THAT(calls({"preCheck"}), testing::ElementsAre("preCheckDisplayMode(0, 105, -1)"));
}

TEST_F(RequestDispatchTest, function105BuildsBackupPage) {
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(output(), testing::HasSubstr("meta_frameid=<meta name=\"FRAME-ID\" "
                                             "content=\"M-BACKUP_EFI_CONF-C-00\">"));
    EXPECT_THAT(output(),
                testing::HasSubstr("body=[/usr/local/www/skel/skeleton_efi_backup.txt\n|"));
    EXPECT_EQ(generators(), (Calls{"/usr/local/www/skel/skeleton_efi_backup.txt",
                                   "/usr/local/www/skel/skeleton_efi_backup_tbl.txt", "shell 1"}));
}

TEST_F(RequestDispatchTest, function106BuildsRestorePage) {
    script.formFields["functionID"] = "106";
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(output(), testing::HasSubstr("meta_frameid=<meta name=\"FRAME-ID\" "
                                             "content=\"M-RESTOR_EFI_CONF-C-00\">"));
    EXPECT_THAT(output(), testing::HasSubstr("body=[/usr/local/www/skel/skeleton_efi_rstr.txt\n|"));
    EXPECT_THAT(output(), testing::HasSubstr("\n|hidden_functionID=HiddenField(functionID, 106, "));
    EXPECT_EQ(generators(), (Calls{"/usr/local/www/skel/skeleton_efi_rstr.txt", "shell 1"}));
    EXPECT_THAT(calls({"preCheck"}), testing::ElementsAre("preCheckDisplayMode(0, 106, -1)"));
}

// The page itself refuses: it is built, then shown as an error.
TEST_F(RequestDispatchTest, restorePageRefusesUnauthorizedUser) {
    script.formFields["functionID"] = "106";
    script.displayMode = 0;
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_THAT(calls({"getDisplayMode", "putLog", "errorExit"}),
                testing::ElementsAre(
                    "getDisplayMode(0, 106, -1)",
                    "putLog 0 lmsg 20020 [EFIRestorePage::makeDispPage(): Authorization required.]",
                    "errorExit Backup/Restore BIOS Configuration|message 12/1033"));
}

TEST_F(RequestDispatchTest, raisesRestorePageNoticeAsAlert) {
    script.formFields["functionID"] = "106";
    script.formFields["hidden_status"] = "2";
    script.posted = true;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(
        calls({"addFunction", "addAlertFunction"}),
        testing::ElementsAre("addFunction initialize()", "addAlertFunction message 71/9999"));
}

TEST_F(RequestDispatchTest, freesEverythingWhenRestorePageThrows) {
    script.formFields["functionID"] = "106";
    script.formFields["hidden_status"] = "3";
    script.posted = true;
    script.lockError = 1101;
    EXPECT_EQ(thrownDetail([] { run(); }), 1101);
    EXPECT_THAT(calls({"new HTMLPage", "printHTML", "errorExit", "terminate"}), testing::IsEmpty());
    EXPECT_THAT(Scripted::livingObjects(), testing::ElementsAre("FormInfo()"));
}

class AcceptedNumberTest : public RequestDispatchTest,
                           public testing::WithParamInterface<const char*> {};

// The conversion stops at the first character that is not a digit.
TEST_P(AcceptedNumberTest, isReadAs105) {
    script.formFields["functionID"] = GetParam();
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(output(), testing::HasSubstr("M-BACKUP_EFI_CONF-C-00"));
    EXPECT_THAT(calls({"putLog", "errorExit"}), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(FunctionNumber, AcceptedNumberTest,
                         testing::Values("105", "0105", "105abc", "105.9", " 105", "+105",
                                         "105 106"));

struct RefusedNumber {
    const char* text;
    int number;
};

std::ostream& operator<<(std::ostream& stream, const RefusedNumber& testCase) {
    return stream << "\"" << testCase.text << "\"";
}

class RefusedNumberTest : public RequestDispatchTest,
                          public testing::WithParamInterface<RefusedNumber> {
protected:
    RefusedNumberTest() {
        script.formFields["functionID"] = GetParam().text;
        refusal = {"putLog 0 lmsg 20034 [Illegal query string] [" +
                       std::to_string(GetParam().number) + "]",
                   "errorExit Error|lmsg 107 [the screen information]"};
    }

    Calls refusal;
};

TEST_P(RefusedNumberTest, isTracedAndShowsErrorPage) {
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_EQ(calls({"putLog", "errorExit"}), refusal);
    EXPECT_THAT(calls({"preCheck"}),
                testing::ElementsAre("preCheckDisplayMode(0, " + std::to_string(GetParam().number) +
                                     ", -1)"));
}

TEST_P(RefusedNumberTest, returnsMinusOneWhenErrorPageReturns) {
    script.errorExitReturns = true;
    EXPECT_EQ(run(), -1);
    EXPECT_EQ(calls({"putLog", "errorExit"}), refusal);
    EXPECT_THAT(calls({"new HTML", "printHTML", "terminate"}), testing::IsEmpty());
    EXPECT_EQ(output(), "");
}

INSTANTIATE_TEST_SUITE_P(FunctionNumber, RefusedNumberTest,
                         testing::Values(RefusedNumber{"107", 107}, RefusedNumber{"104", 104},
                                         RefusedNumber{"-105", -105}, RefusedNumber{"", 0},
                                         RefusedNumber{"abc", 0}, RefusedNumber{"0x69", 0},
                                         RefusedNumber{"1050", 1050}, RefusedNumber{"5", 5}));

TEST_F(RequestDispatchTest, missingFunctionNumberShowsErrorPageUntraced) {
    script.formFields.clear();
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_THAT(decisions(),
                testing::ElementsAre("guiCheckSession true", "new MessageMgr(0)",
                                     "new CGIRequester(the session)", "getFormData functionID",
                                     "errorExit Error|lmsg 107 [the screen information]"));
}

// If errorExit() returns, the missing number is taken as 0 and refused.
TEST_F(RequestDispatchTest, missingFunctionNumberIsRefusedAsZeroWhenErrorPageReturns) {
    script.errorExitReturns = true;
    script.formFields.clear();
    EXPECT_EQ(run(), -1);
    EXPECT_THAT(decisions(),
                testing::ElementsAre("guiCheckSession true", "new MessageMgr(0)",
                                     "new CGIRequester(the session)", "getFormData functionID",
                                     "errorExit Error|lmsg 107 [the screen information]",
                                     "preCheckDisplayMode(0, 0, -1)", "getDisplayMode(0, 0, -1)",
                                     "putLog 0 lmsg 20034 [Illegal query string] [0]",
                                     "errorExit Error|lmsg 107 [the screen information]"));
}

TEST_F(RequestDispatchTest, propagatesExceptionOfUnreadableForm) {
    script.formError = 1107;
    EXPECT_EQ(thrownDetail([] { run(); }), 1107);
    EXPECT_THAT(calls({"delete"}),
                testing::ElementsAre("delete CGIRequester(the session)", "delete MessageMgr(0)",
                                     "delete VeskTrace(1, 2, 29696)"));
}

TEST_F(RequestDispatchTest, preCheckOfOneAllowsWithoutFurtherChecks) {
    script.preCheckDisplayMode = 1;
    script.displayMode = 0;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(calls({"preCheck", "getDisplayMode"}),
                testing::ElementsAre("preCheckDisplayMode(0, 105, -1)"));
    EXPECT_THAT(output(), testing::HasSubstr("RadioButton(radio_button, , form_name, 2)"));
}

class OtherPreCheckTest : public RequestDispatchTest, public testing::WithParamInterface<int> {};

TEST_P(OtherPreCheckTest, leavesDecisionToDisplayMode) {
    script.preCheckDisplayMode = GetParam();
    script.displayMode = 0;
    EXPECT_EQ(endedBy([] { run(); }), "errorExit");
    EXPECT_THAT(calls({"getDisplayMode", "errorExit"}),
                testing::ElementsAre("getDisplayMode(0, 105, -1)",
                                     "errorExit Backup/Restore BIOS Configuration|"
                                     "message 12/1033"));
}

INSTANTIATE_TEST_SUITE_P(PreCheck, OtherPreCheckTest, testing::Values(2, -1, 0));

class AllowingDisplayModeTest : public RequestDispatchTest,
                                public testing::WithParamInterface<int> {};

// Pages test for exactly 2, so they get 2 or 0, never the raw number.
TEST_P(AllowingDisplayModeTest, passesTwoToPage) {
    script.displayMode = GetParam();
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(output(), testing::HasSubstr("RadioButton(radio_button, , form_name, 2)"));
}

INSTANTIATE_TEST_SUITE_P(DisplayMode, AllowingDisplayModeTest, testing::Values(1, 2, -5, 256));

}  // namespace VeskLib::Test
