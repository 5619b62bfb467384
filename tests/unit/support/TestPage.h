#pragma once

#include "pages/AbstractBackupRestorePage.h"
#include "tests/scripted/Recorder.h"
#include "tests/unit/support/ProbeComponent.h"

#include <functional>
#include <string>

namespace VeskLib::Test {

// A page with the protected members of its base made public. The test decides what it builds.
class TestPage : public Gui::AbstractBackupRestorePage {
public:
    using AbstractBackupRestorePage::AbstractBackupRestorePage;
    using AbstractBackupRestorePage::addMessage;
    using AbstractBackupRestorePage::addNotice;
    using AbstractBackupRestorePage::addToRow;
    using AbstractBackupRestorePage::alertFlag;
    using AbstractBackupRestorePage::backup;
    using AbstractBackupRestorePage::buildPage;
    using AbstractBackupRestorePage::componentMap;
    using AbstractBackupRestorePage::discardUploadedFile;
    using AbstractBackupRestorePage::displayMode;
    using AbstractBackupRestorePage::errorFlag;
    using AbstractBackupRestorePage::formatDate;
    using AbstractBackupRestorePage::formInfo;
    using AbstractBackupRestorePage::functionNumber;
    using AbstractBackupRestorePage::message;
    using AbstractBackupRestorePage::messageMgr;
    using AbstractBackupRestorePage::putFileSelector;
    using AbstractBackupRestorePage::putHiddenField;
    using AbstractBackupRestorePage::putReadyText;
    using AbstractBackupRestorePage::putText;
    using AbstractBackupRestorePage::putUploadButton;
    using AbstractBackupRestorePage::reportError;
    using AbstractBackupRestorePage::reportUnavailable;
    using AbstractBackupRestorePage::requester;
    using AbstractBackupRestorePage::restoreUploadedFile;
    using AbstractBackupRestorePage::setErrMsg;
    using AbstractBackupRestorePage::traceModule;
    using AbstractBackupRestorePage::traceSystemError;
    using AbstractBackupRestorePage::traceText;
    using AbstractBackupRestorePage::upload;

    void makeDispPage() override {
        Scripted::record("makeDispPage");
        build(*this);
    }
    void makeConfigPage() override {
        Scripted::record("makeConfigPage");
        build(*this);
    }

    // Adds a component to the page without calling the platform.
    void putProbe(const std::string& name) { componentMap[name] = new ProbeComponent(name); }

    std::function<void(TestPage&)> build = [](TestPage&) {};
};

}  // namespace VeskLib::Test
