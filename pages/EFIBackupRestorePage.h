#pragma once

#include "pages/AbstractBackupRestorePage.h"

#include <string>

namespace VeskLib::Gui {

// A combined page that backs up partition 0, or restores it from an uploaded file after a
// confirmation. Shares the skeleton and the function number of the backup page. The dispatcher does
// not use this page.
class EFIBackupRestorePage : public AbstractBackupRestorePage {
public:
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;

    // Carries out the posted step and builds the page.
    EFIBackupRestorePage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                         int* displayMode);

    // Builds the form, or reports missing authority, which this page does not trace.
    void makeDispPage() override;

    // Carries out the posted step and builds the form again.
    void makeConfigPage() override;

private:
    // Restores or discards the uploaded file, depending on "hidden_procname".
    void restore();

    // Stages the uploaded file and makes the browser ask for confirmation.
    void uploadAndAsk();
    void putFormComponents();

    int processMode;
    bool restoreFinished;
    std::string stagingFilePath;
    std::string stagingLockPath;
    std::string backupFilePath;
};

}  // namespace VeskLib::Gui
