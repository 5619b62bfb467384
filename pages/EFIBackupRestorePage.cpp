#include "pages/EFIBackupRestorePage.h"

#include "html/componentMaps.h"

#include <VeskLib/Gui/Button.h>
#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/EFIConfFile.h>
#include <VeskLib/getCGIPath.h>

#include <cstdlib>

namespace VeskLib::Gui {

namespace {

const int COMBINED_FUNCTION = 105;
const unsigned int ONLY_PARTITION = 0;

// What "hidden_status" asks for.
enum Mode { DISPLAY = 0, UPLOAD = 1, RESTORE = 2, BACKUP = 3 };

// A line break inside a script string: the two characters stand in the text as they are.
const char* const SCRIPT_LINE_BREAK = "\\n";

}  // namespace

const char* const EFIBackupRestorePage::FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
const std::string EFIBackupRestorePage::skeletonFileName =
    "/usr/local/www/skel/skeleton_efi_backup.txt";

EFIBackupRestorePage::EFIBackupRestorePage(CGIRequester& requester, FormInfo& formInfo,
                                           MessageMgr& messageMgr, int* displayMode)
    : AbstractBackupRestorePage(requester, formInfo, messageMgr, displayMode, skeletonFileName,
                                COMBINED_FUNCTION),
      processMode(DISPLAY),
      restoreFinished(false),
      stagingFilePath(getCGIPath("/var/tmp/restored_eficonf") + requester.getSessionId()),
      stagingLockPath(getCGIPath("/var/tmp/restored_eficonf.lock")),
      backupFilePath(getCGIPath("/var/tmp/efi_backup") + requester.getSessionId()) {
    putText("onload_function", "onLoadFunction()");
    buildPage();
}

void EFIBackupRestorePage::makeConfigPage() {
    std::string status;
    if (formInfo.getFormData("hidden_status", status)) {
        processMode = std::atoi(status.c_str());
        switch (processMode) {
            case UPLOAD:
                uploadAndAsk();
                break;
            case RESTORE:
                restore();
                break;
            case BACKUP:
                // The download's name carries no partition number, because there is no choice.
                backup(ONLY_PARTITION, backupFilePath, false);
                break;
            default:
                processMode = DISPLAY;
                break;
        }
    }
    makeDispPage();
}

void EFIBackupRestorePage::uploadAndAsk() {
    upload(stagingFilePath, stagingLockPath);
    if (alertFlag) {
        return;
    }
    VeskUi::EFIConfFile::EFIConfFileHeader header;
    std::string version;
    unsigned int partition = 0;
    std::string partitionName;
    try {
        VeskUi::EFIConfFile file(stagingFilePath.c_str());
        file.getFileHeader(header, version, partition, partitionName);
    } catch (const PException&) {
        addNotice(messageMgr.getMessage(64, 1026));
        discardUploadedFile(stagingFilePath, stagingLockPath);
        return;
    }
    const std::string lineBreak = SCRIPT_LINE_BREAK;
    std::string question = messageMgr.getString(1358) + ":\t" + lineBreak + "\t";
    question += messageMgr.getString(973) + formatDate(header.saveTime, "-");
    question += lineBreak + "\t" + messageMgr.getString(1359) + version;
    putReadyText("information", question);
    putText("onload_function", "confirmFunction()");
}

void EFIBackupRestorePage::restore() {
    std::string step;
    formInfo.getFormData("hidden_procname", step);
    if (step == "install") {
        VeskUi::PrimitiveTypeArray<unsigned char> targets;
        targets.records.push_back(ONLY_PARTITION);
        restoreUploadedFile(targets, restoreFinished, COMBINED_FUNCTION);
        // Success is an alert as well, so the file goes after every restore, unlike on the restore
        // screen, which keeps it.
        if (alertFlag) {
            discardUploadedFile(stagingFilePath, stagingLockPath);
        }
    } else if (step == "discard") {
        discardUploadedFile(stagingFilePath, stagingLockPath);
    }
}

void EFIBackupRestorePage::makeDispPage() {
    if (*displayMode != ALLOWED) {
        reportError(messageMgr.getMessage(12, 1033));
        return;
    }
    std::string ignored;
    if (formInfo.getFormData("message", ignored)) {
        discardUploadedFile(stagingFilePath, stagingLockPath);
        addMessage(messageMgr.getMessage(70, 0));
    }
    putFormComponents();
}

void EFIBackupRestorePage::putFormComponents() {
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status",
                   std::to_string(static_cast<unsigned int>(processMode)));
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    insertComponent(componentMap, "download",
                    std::make_unique<Button>("download", messageMgr.getString(971), FORM_NAME, 0,
                                             "\"backupFunction()\"", false));
    putReadyText("item_download", messageMgr.getString(1356));
    putText("item_title", messageMgr.getString(986));
    putReadyText("message", messageMgr.getString(1357));
    putFileSelector();
    putUploadButton();
    putHiddenField("hidden_procname", "hidden_procname", "");
    putReadyText("message0", messageMgr.getMessage(354, 0));
}

}  // namespace VeskLib::Gui
