#include "pages/EFIBackupPage.h"

#include "data/requestNumbers.h"
#include "html/HTMLContainer.h"
#include "html/componentMaps.h"
#include "pages/boardPaths.h"
#include "pages/catalogueNumbers.h"
#include "pages/functionNumbers.h"
#include "pages/libraryText.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/Gui/RadioButton.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/getCGIPath.h>

#include <cstdlib>
#include <utility>

namespace VeskLib::Gui {

const std::string EFIBackupPage::skeletonFileName = BoardPaths::BACKUP_SKELETON;

EFIBackupPage::EFIBackupPage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                             int* displayMode)
    : AbstractBackupRestorePage(requester, formInfo, messageMgr, displayMode, skeletonFileName,
                                Functions::BACKUP) {
    putText("onload_function", "onLoadFunction()");
    buildPage();
}

void EFIBackupPage::makeDispPage() {
    if (!checkAuthority("EFIBackupPage::makeDispPage(): Authorization required.")) {
        return;
    }
    if (!requester.getInfo(VeskUi::GET_PARTITION_INFO, partitionInfo)) {
        reportUnavailable("the partition status");
        return;
    }
    putFixedComponents();

    auto rows = std::make_unique<HTMLContainer>();
    bool noRowYet = true;
    for (unsigned int partition = 0; partition < CommonUtil::getMaxPartitionNum(); ++partition) {
        // A running partition can be backed up too.
        if (partitionInfo.isInstalled(static_cast<int>(partition))) {
            rows->add(makeRow(partition));
            noRowYet = false;
        }
    }
    insertComponent(componentMap, "table_pid", std::move(rows));
    if (noRowYet) {
        reportError(messageMgr.getMessage(Messages::NO_PARTITION, Details::INVALID));
    }
}

void EFIBackupPage::makeConfigPage() {
    std::string status;
    if (!formInfo.getFormData("hidden_status", status) || status != BACKUP_MODE) {
        makeDispPage();
        return;
    }
    std::string partition;
    if (!formInfo.getFormData("radio_button", partition)) {
        // Intended: only the error is shown, not the list again.
        trace.putLog(0, "getFormData KEY_RADIO_BUTTON error!!");
        reportError(libraryText(LibraryTexts::UNAVAILABLE, "the screen information"));
        return;
    }
    backupFilePath = getCGIPath(BoardPaths::BACKUP_FILE);
    backupFilePath += requester.getSessionId();
    // The back-end checks the partition number. makeDispPage() checks the authority afterwards; for
    // a user without it, the request channel sends nothing.
    backup(static_cast<unsigned int>(std::atoi(partition.c_str())), backupFilePath, true);
    makeDispPage();
}

void EFIBackupPage::putFixedComponents() {
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status", BACKUP_MODE);
    putReadyText("item_download", messageMgr.getString(Captions::BACK_UP));
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    putReadyText("message", messageMgr.getMessage(Messages::NOTHING_SELECTED, Details::NONE));
    putText("item_pid", messageMgr.getString(Captions::NUMBER));
    putText("item_part_name", messageMgr.getString(Captions::PARTITION_NAME));
}

std::unique_ptr<HTMLItem> EFIBackupPage::makeRow(unsigned int partition) {
    const std::string number = std::to_string(partition);
    auto row = std::make_unique<HTMLItem>(BoardPaths::BACKUP_ROW_SKELETON);
    // One group per row, all with the same name, so that they act as one group.
    auto choice = std::make_unique<RadioButton>("radio_button", "", FORM_NAME, displayMode);
    choice->add(number, "", false, false);
    addToRow(*row, "radio_button", std::move(choice));
    addToRow(*row, "pid", std::make_unique<TextString>(number));
    addToRow(
        *row, "part_name",
        std::make_unique<TextString>(partitionInfo.getPartitionName(static_cast<int>(partition))));
    return row;
}

}  // namespace VeskLib::Gui
