#pragma once

#include "main/EFIBackupRestoreMain.h"
#include "tests/unit/support/ScriptedTest.h"

#include <VeskLib/PException.h>

#include <memory>
#include <string>

namespace VeskLib::Test {

// The main object with its protected members made public.
class OpenMain : public Gui::EFIBackupRestoreMain {
public:
    using AbstractConfigMain::title;
    using AbstractMain::authority;
    using AbstractMain::formInfo;
    using AbstractMain::functionId;
    using AbstractMain::messageMgr;
    using AbstractMain::messageSet;
    using AbstractMain::requestEnded;
    using AbstractMain::requester;
    using AbstractMain::responseStatus;
    using AbstractMain::sessionText;
};

// Fixture for tests of the main object. An authorized user requests the backup screen of a board
// with one partition.
class MainTest : public ScriptedTest {
protected:
    MainTest() {
        script.formFields["functionID"] = "105";
        script.setPartitions({{true, "name", {}}});
    }

    // Posts a backup that the back-end refuses, which adds a notice to the page.
    void postRefusedBackup() {
        script.posted = true;
        script.formFields["hidden_status"] = "BACKUP";
        script.formFields["radio_button"] = "0";
        script.replies[0x020100A3].errorCode = 1540;
    }

    // Runs one complete request and returns its exit status.
    static int run() { return Gui::EFIBackupRestoreMain().exec(); }
};

}  // namespace VeskLib::Test
