#pragma once

#include "pages/AbstractBackupRestorePage.h"

#include <string>

namespace VeskLib::Gui {

// One screen for both directions, always of partition 0: a button backs it up, a file chooser
// restores it after a question. It shares the backup screen's skeleton and function number. The
// dispatcher does not build it.
class EFIBackupRestorePage : public AbstractBackupRestorePage {
public:
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;

    // Does all of the page's work, the posted step included.
    EFIBackupRestorePage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                         int* displayMode);

    // Builds the form, or reports that there is no authority. This page traces nothing of its own.
    void makeDispPage() override;

    // Carries out the posted step and shows the form again.
    void makeConfigPage() override;

private:
    // Restores or discards the uploaded file, as "hidden_procname" says.
    void restore();

    // Stages the uploaded file and has the browser ask whether to restore it.
    void uploadAndAsk();
    void putFormComponents();

    int processMode;
    bool restoreFinished;
    std::string stagingFilePath;
    std::string stagingLockPath;
    std::string backupFilePath;
};

}  // namespace VeskLib::Gui
