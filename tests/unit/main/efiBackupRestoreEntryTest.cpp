// The program's main(), built under another name.

#include "tests/unit/support/MainTest.h"

#include <stdexcept>

int efiBackupRestoreEntry();

namespace VeskLib::Test {

class EntryTest : public MainTest {};

TEST_F(EntryTest, returnsExitStatusOfRequest) {
    script.exitStatus = 42;
    EXPECT_EQ(efiBackupRestoreEntry(), 42);
}

TEST_F(EntryTest, returnsZeroAfterPrintingPage) {
    EXPECT_EQ(efiBackupRestoreEntry(), 0);
    EXPECT_THAT(output(), testing::HasSubstr("M-BACKUP_EFI_CONF-C-00"));
}

TEST_F(EntryTest, returnsMinusOneForUnknownFunctionNumber) {
    script.errorExitReturns = true;
    script.formFields["functionID"] = "107";
    EXPECT_EQ(efiBackupRestoreEntry(), -1);
}

TEST_F(EntryTest, createsRunsAndDeletesOneMainObject) {
    script.sessionIsValid = false;
    EXPECT_EQ(endedBy([] { efiBackupRestoreEntry(); }), "guiCheckSession");
    EXPECT_THAT(calls(), testing::ElementsAre("new VeskTrace(1, 2, 29696)", "new FormInfo()",
                                              "getCookie", "exec", "guiCheckSession true",
                                              "delete VeskTrace(1, 2, 29696)"));
}

// An exception ends the process abnormally, whether the request or the main object throws it, and
// whether it is a PException or one of the standard library.
TEST_F(EntryTest, catchesNoException) {
    script.formError = 1107;
    EXPECT_EQ(thrownDetail([] { efiBackupRestoreEntry(); }), 1107);
    for (const char* place : {"exec", "getCookie", "new FormInfo"}) {
        delete Gui::FormInfo::myInstance;
        Gui::FormInfo::myInstance = nullptr;
        Scripted::throwAt(place, std::make_exception_ptr(std::runtime_error("other")));
        EXPECT_THROW(efiBackupRestoreEntry(), std::runtime_error) << place;
        Scripted::throwAt(place, nullptr);
    }
}

}  // namespace VeskLib::Test
