#include "pages/EFIBackupPage.h"

#include "data/requestNumbers.h"
#include "html/HTMLContainer.h"
#include "html/componentMaps.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/Gui/RadioButton.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/getCGIPath.h>
#include <VeskLib/lmsg_getmsg.h>

#include <cstdlib>
#include <utility>

namespace VeskLib::Gui {

namespace {

const int BACKUP_FUNCTION = 105;
const std::size_t MESSAGE_SIZE = 256;
const char* const ROW_SKELETON = "/usr/local/www/skel/skeleton_efi_backup_tbl.txt";

}  // namespace

const char* const EFIBackupPage::FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
const std::string EFIBackupPage::skeletonFileName = "/usr/local/www/skel/skeleton_efi_backup.txt";
const char* const EFIBackupPage::BACKUP_MODE = "BACKUP";

EFIBackupPage::EFIBackupPage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                             int* displayMode)
    : AbstractBackupRestorePage(requester, formInfo, messageMgr, displayMode, skeletonFileName,
                                BACKUP_FUNCTION) {
    putText("onload_function", "onLoadFunction()");
    buildPage();
}

void EFIBackupPage::makeDispPage() {
    if (*displayMode != ALLOWED) {
        traceText(20020, "EFIBackupPage::makeDispPage(): Authorization required.");
        reportError(messageMgr.getMessage(12, 1033));
        return;
    }
    if (!requester.getInfo(VeskUi::GET_PARTITION_INFO, partitionInfo)) {
        reportUnreadable("the partition status");
        return;
    }
    putFixedComponents();

    auto rows = std::make_unique<HTMLContainer>();
    bool noRowYet = true;
    for (unsigned int partition = 0; partition < CommonUtil::getMaxPartitionNum(); ++partition) {
        // Being installed is all that counts: a partition that runs can be backed up as well.
        if (partitionInfo.isInstalled(static_cast<int>(partition))) {
            rows->add(makeRow(partition));
            noRowYet = false;
        }
    }
    insertComponent(componentMap, "table_pid", std::move(rows));
    if (noRowYet) {
        reportError(messageMgr.getMessage(46, 1026));
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
        // The list is not shown again, on purpose: the operator sees only what went wrong.
        trace.putLog(0, "getFormData KEY_RADIO_BUTTON error!!");
        char text[MESSAGE_SIZE];
        reportError(lmsg_getmsg(107, text, "the screen information"));
        return;
    }
    backupFilePath = getCGIPath("/var/tmp/efi_backup");
    backupFilePath += requester.getSessionId();
    // The number is not checked here: the back-end knows which partitions it can back up.
    backup(static_cast<unsigned int>(std::atoi(partition.c_str())), backupFilePath, true);
    makeDispPage();
}

void EFIBackupPage::putFixedComponents() {
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status", BACKUP_MODE);
    putReadyText("item_download", messageMgr.getString(1006));
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    putReadyText("message", messageMgr.getMessage(303, 0));
    putText("item_pid", messageMgr.getString(132));
    putText("item_part_name", messageMgr.getString(394));
}

std::unique_ptr<HTMLItem> EFIBackupPage::makeRow(unsigned int partition) {
    const std::string number = std::to_string(partition);
    auto row = std::make_unique<HTMLItem>(ROW_SKELETON);
    // A group for each row, all of one name: the browser takes them for one group.
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
