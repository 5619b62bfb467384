#include "pages/EFIBackupRestorePage.h"

#include "html/componentMaps.h"
#include "pages/boardPaths.h"
#include "pages/catalogueNumbers.h"
#include "pages/functionNumbers.h"

#include <VeskLib/Gui/Button.h>
#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <cstdlib>

namespace VeskLib::Gui {

namespace {

const unsigned int ONLY_PARTITION = 0;

// The values of "hidden_status".
enum Mode { DISPLAY = 0, UPLOAD = 1, RESTORE = 2, BACKUP = 3 };

// A line break in a script string: a backslash and an "n".
const char* const SCRIPT_LINE_BREAK = "\\n";

}  // namespace

const std::string EFIBackupRestorePage::skeletonFileName = BoardPaths::BACKUP_SKELETON;

EFIBackupRestorePage::EFIBackupRestorePage(CGIRequester& requester, FormInfo& formInfo,
                                           MessageMgr& messageMgr, int* displayMode)
    : AbstractBackupRestorePage(requester, formInfo, messageMgr, displayMode, skeletonFileName,
                                Functions::BACKUP),
      processMode(DISPLAY),
      restoreFinished(false),
      stagingFilePath(getCGIPath(BoardPaths::STAGING_FILE) + requester.getSessionId()),
      stagingLockPath(getCGIPath(BoardPaths::STAGING_LOCK)),
      backupFilePath(getCGIPath(BoardPaths::BACKUP_FILE) + requester.getSessionId()) {
    putText("onload_function", "onLoadFunction()");
    buildPage();
}

// makeDispPage() checks the authority after the posted step; for a user without it, the request
// channel sends nothing.
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
                // No partition number in the file name, because there is only one partition.
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
    ConfigurationFacts facts;
    try {
        facts = readConfigurationFacts(stagingFilePath);
    } catch (const PException&) {
        addNotice(messageMgr.getMessage(Messages::FILE_UNUSABLE, Details::INVALID));
        discardUploadedFile(stagingFilePath, stagingLockPath);
        return;
    }
    const std::string lineBreak = SCRIPT_LINE_BREAK;
    std::string question =
        messageMgr.getString(Captions::COMBINED_FILE_QUESTION) + ":\t" + lineBreak + "\t";
    question += messageMgr.getString(Captions::SAVED_ON) + formatDate(facts.saveTime, "-");
    question += lineBreak + "\t" + messageMgr.getString(Captions::BIOS_VERSION) + facts.version;
    putReadyText("information", question);
    putText("onload_function", "confirmFunction()");
}

void EFIBackupRestorePage::restore() {
    std::string step;
    formInfo.getFormData("hidden_procname", step);
    if (step == "install") {
        VeskUi::PrimitiveTypeArray<unsigned char> targets;
        targets.records.push_back(ONLY_PARTITION);
        restoreUploadedFile(targets, restoreFinished, Functions::BACKUP);
        // Success is an alert as well, so the file is removed after every restore. The restore page
        // keeps it.
        if (alertFlag) {
            discardUploadedFile(stagingFilePath, stagingLockPath);
        }
    } else if (step == "discard") {
        discardUploadedFile(stagingFilePath, stagingLockPath);
    }
}

void EFIBackupRestorePage::makeDispPage() {
    if (*displayMode != ALLOWED) {
        reportError(messageMgr.getMessage(Messages::NO_PERMISSION, Details::NO_AUTHORITY));
        return;
    }
    std::string ignored;
    if (formInfo.getFormData("message", ignored)) {
        discardUploadedFile(stagingFilePath, stagingLockPath);
        // No alert, because the form shows the text.
        const std::string restored = messageMgr.getMessage(Messages::RESTORED, Details::NONE);
        addMessage(restored);
        putText("notice", restored);
    }
    putFormComponents();
}

void EFIBackupRestorePage::putFormComponents() {
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status",
                   std::to_string(static_cast<unsigned int>(processMode)));
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    insertComponent(
        componentMap, "download",
        std::make_unique<Button>("download", messageMgr.getString(Captions::COMBINED_BACKUP_BUTTON),
                                 FORM_NAME, 0, "\"backupFunction()\"", false));
    putReadyText("item_download", messageMgr.getString(Captions::COMBINED_BACKUP_INSTRUCTIONS));
    putText("item_title", messageMgr.getString(Captions::COMBINED_TITLE));
    putReadyText("message", messageMgr.getString(Captions::COMBINED_RESTORE_INSTRUCTIONS));
    putFileSelector();
    putUploadButton();
    putHiddenField("hidden_procname", "hidden_procname", "");
    putReadyText("message0", messageMgr.getMessage(Messages::NO_FILE_CHOSEN, Details::NONE));
}

}  // namespace VeskLib::Gui
