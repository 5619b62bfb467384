#pragma once

#include "main/EFIBackupRestoreMain.h"
#include "tests/unit/support/ScriptedTest.h"

#include <VeskLib/PException.h>

#include <memory>
#include <string>

namespace VeskLib::Test {

// The main object, with what its classes keep to themselves.
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

// A test of the main object: a request for the backup screen of a board with one partition, by a
// user who may use it.
class MainTest : public ScriptedTest {
protected:
    MainTest() {
        script.formFields["functionID"] = "105";
        script.setPartitions({{true, "name", {}}});
    }

    // Has a posted backup refused by the back-end, which gives the page a notice.
    void postRefusedBackup() {
        script.posted = true;
        script.formFields["hidden_status"] = "BACKUP";
        script.formFields["radio_button"] = "0";
        script.replies[0x020100A3].errorCode = 1540;
    }

    // Runs one whole request and gives its exit status.
    static int run() { return Gui::EFIBackupRestoreMain().exec(); }
};

}  // namespace VeskLib::Test
