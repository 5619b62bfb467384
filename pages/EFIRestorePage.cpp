#include "pages/EFIRestorePage.h"

#include "data/requestNumbers.h"
#include "html/HTMLContainer.h"
#include "html/componentMaps.h"
#include "pages/boardPaths.h"
#include "pages/catalogueNumbers.h"
#include "pages/functionNumbers.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/Gui/CheckBox.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <cstdlib>
#include <utility>
#include <vector>

namespace VeskLib::Gui {

namespace {

const char* const UNKNOWN_VERSION = "-";

// The values of "hidden_status".
enum Step { DISPLAY = 0, UPLOAD = 1, RESTORE = 2, DISCARD = 3 };

const unsigned int NO_BOARD = 255;
const int SYSTEM_BOARD = 0;
const unsigned char OTHER_KIND_MASK = 0xE0;
const unsigned char BOARD_NUMBER_MASK = 0x0F;

}  // namespace

const std::string EFIRestorePage::skeletonFileName = BoardPaths::UPLOAD_SKELETON;
const std::string EFIRestorePage::skeletonFileNameSel = BoardPaths::SELECTION_SKELETON;

EFIRestorePage::EFIRestorePage(CGIRequester& requester, FormInfo& form, MessageMgr& messages,
                               int* displayMode)
    : AbstractBackupRestorePage(requester, form, messages, displayMode, skeletonFileName,
                                Functions::RESTORE),
      requestStatus(DISPLAY),
      restoreFinished(false) {
    stagingFilePath = getCGIPath(BoardPaths::STAGING_FILE);
    stagingLockPath = getCGIPath(BoardPaths::STAGING_LOCK);
    // One staged file per session, but one lock for all sessions.
    stagingFilePath += requester.getSessionId();
    putText("onload_function", "onLoadFunction()");
    buildPage();
}

void EFIRestorePage::makeDispPage() {
    std::string ignored;
    // Without authority the form is built too, but buildPage() deletes its components.
    if (checkAuthority("EFIRestorePage::makeDispPage(): Authorization required.") &&
        formInfo.getFormData("message", ignored)) {
        addNotice(messageMgr.getMessage(Messages::RESTORED, Details::NONE));
    }
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status", std::to_string(requestStatus));
    putReadyText("message", messageMgr.getString(Captions::UPLOAD_INSTRUCTIONS));
    putFileSelector();
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    putHiddenField("hidden_procname", "hidden_procname", "");
    putReadyText("message0", messageMgr.getMessage(Messages::NO_FILE_CHOSEN, Details::NONE));
}

void EFIRestorePage::makeConfigPage() {
    std::string status;
    if (!formInfo.getFormData("hidden_status", status)) {
        // Intended: a POST that names no step shows the empty skeleton.
        return;
    }
    // The authority is checked after the step, when the next form is built; for a user without it,
    // the request channel sends nothing.
    requestStatus = std::atoi(status.c_str());
    switch (requestStatus) {
        case UPLOAD:
            upload(stagingFilePath, stagingLockPath);
            if (!alertFlag) {
                makeSelectPage();
            }
            if (alertFlag) {
                makeDispPage();
            }
            break;
        case RESTORE:
            restore();
            if (!restoreFinished) {
                makeDispPage();
            }
            break;
        case DISCARD:
            discard();
            makeDispPage();
            break;
        default:
            requestStatus = DISPLAY;
            makeDispPage();
            break;
    }
}

void EFIRestorePage::makeSelectPage() {
    requestStatus = RESTORE;
    // Without authority the work continues, but buildPage() deletes the components.
    checkAuthority("EFIRestorePage::makeSelectPage(): Authorization required.");
    if (!requester.getInfo(VeskUi::GET_PARTITION_INFO, partitionInfo)) {
        reportUnavailable("the partition status");
        return;
    }
    if (!requester.getInfo(VeskUi::GET_HARD_INSTALL_INFO, hardInstallInfo)) {
        reportUnavailable("the system status");
        return;
    }
    generator->setSkeletonFile(skeletonFileNameSel);
    putText("form_action", FORM_TARGET);
    putHiddenField("hidden_status", "hidden_status", std::to_string(requestStatus));
    putText("status", std::to_string(DISCARD));
    putText("message", messageMgr.getString(Captions::SELECTION_INSTRUCTIONS));
    putText("information", messageMgr.getString(Captions::ABOUT_THE_FILE));

    ConfigurationFacts file;
    try {
        file = readConfigurationFacts(stagingFilePath);
    } catch (const PException&) {
        rejectStagedFile();
        return;
    }
    putFileComponents(file);
    putFormComponents();

    VeskUi::VersionInfoPacket versions;
    // A failure is not reported; all versions are then shown as unknown.
    const bool versionsKnown = requester.getInfo(VeskUi::GET_VERSION_INFO, versions);
    auto rows = std::make_unique<HTMLContainer>();
    bool noRowYet = true;
    for (int partition = 0; partition < static_cast<int>(CommonUtil::getMaxPartitionNum());
         ++partition) {
        if (partitionInfo.isInstalled(partition)) {
            rows->add(makeRow(static_cast<unsigned int>(partition), versionsKnown, versions));
            noRowYet = false;
        }
    }
    insertComponent(componentMap, "table_pid", std::move(rows));
    if (noRowYet) {
        reportError(messageMgr.getMessage(Messages::NO_PARTITION, Details::INVALID));
    }
}

void EFIRestorePage::rejectStagedFile() {
    addNotice(messageMgr.getMessage(Messages::FILE_UNUSABLE, Details::INVALID));
    generator->setSkeletonFile(skeletonFileName);
    discardUploadedFile(stagingFilePath, stagingLockPath);
}

void EFIRestorePage::putFileComponents(const ConfigurationFacts& file) {
    std::string table = messageMgr.getString(Captions::PARTITION);
    table += messageMgr.getString(Captions::NUMBER);
    putText("tablepid", table);
    putText("pid", std::to_string(file.partition));
    putText("part_name", file.partitionName);
    putText("item_date", messageMgr.getString(Captions::SAVED_ON));
    putText("date", formatDate(file.saveTime, "-"));
    putText("item_version", messageMgr.getString(Captions::BIOS_VERSION));
    putText("version", file.version);
}

void EFIRestorePage::putFormComponents() {
    putFileSelector();
    putUploadButton();
    putHiddenField("hidden_functionID", "functionID", std::to_string(functionNumber));
    putHiddenField("hidden_procname", "hidden_procname", "");
    putText("restore", "restore");
    putReadyText("message0", messageMgr.getMessage(Messages::NOTHING_SELECTED, Details::NONE));
    putReadyText("message1", messageMgr.getMessage(Messages::CONFIRM_RESTORE, Details::NONE));
    putText("item_pid", messageMgr.getString(Captions::NUMBER));
    putText("item_part_name", messageMgr.getString(Captions::PARTITION_NAME));
    auto selectAll = std::make_unique<CheckBox>("", "", FORM_NAME, displayMode);
    selectAll->add("check_box", "", messageMgr.getString(Captions::SELECT_ALL), "", false, false);
    selectAll->setClickHandler("switchField()");
    insertComponent(componentMap, "check_box", std::move(selectAll));
}

// All rows are selectable, whatever their versions and the origin of the file: the operator
// decides.
std::unique_ptr<HTMLItem> EFIRestorePage::makeRow(unsigned int partition, bool versionsKnown,
                                                  const VeskUi::VersionInfoPacket& versions) {
    const std::string number = std::to_string(partition);
    auto row = std::make_unique<HTMLItem>(BoardPaths::SELECTION_ROW_SKELETON);
    auto box = std::make_unique<CheckBox>("", "", FORM_NAME, displayMode);
    box->add("pid" + number, number, "", "", false, false);
    addToRow(*row, "check_box", std::move(box));
    addToRow(*row, "pid", std::make_unique<TextString>(number));
    addToRow(
        *row, "part_name",
        std::make_unique<TextString>(partitionInfo.getPartitionName(static_cast<int>(partition))));
    bool found = false;
    unsigned int board = NO_BOARD;
    getHomeSBNum(partition, found, board);
    addToRow(*row, "version",
             std::make_unique<TextString>(versionsKnown && found
                                              ? versions.getBIOSVersion(static_cast<int>(board), 0)
                                              : UNKNOWN_VERSION));
    return row;
}

void EFIRestorePage::getHomeSBNum(unsigned int partition, bool& found, unsigned int& sbNumber) {
    found = false;
    sbNumber = NO_BOARD;
    std::vector<unsigned char> nodeIds;
    partitionInfo.getNodeIds(static_cast<int>(partition), nodeIds);
    for (const unsigned char node : nodeIds) {
        if ((node & OTHER_KIND_MASK) != 0) {
            continue;
        }
        // Intended: bit 4 is not part of the number, so 0x03 and 0x13 are the same board.
        const int board = node & BOARD_NUMBER_MASK;
        if (hardInstallInfo.isInstalled(SYSTEM_BOARD, board) &&
            hardInstallInfo.isHome(SYSTEM_BOARD, board, 0)) {
            found = true;
            sbNumber = static_cast<unsigned int>(board);
            return;
        }
    }
    traceText(LibraryTexts::REFUSAL, "Home SB absent:PID" + std::to_string(partition));
}

void EFIRestorePage::restore() {
    VeskUi::PrimitiveTypeArray<unsigned char> targets;
    std::string ignored;
    if (formInfo.getFormData("check_box", ignored)) {
        // "All" means the partitions that are installed now, so request the current table.
        if (!requester.getInfo(VeskUi::GET_PARTITION_INFO, partitionInfo)) {
            reportUnavailable("the partition status");
            return;
        }
        addInstalledPartitions(targets);
    } else {
        addTickedPartitions(targets);
    }
    // An empty list is sent too; the back-end decides.
    restoreUploadedFile(targets, restoreFinished, Functions::RESTORE);
}

void EFIRestorePage::addInstalledPartitions(
    VeskUi::PrimitiveTypeArray<unsigned char>& targets) const {
    for (int partition = 0; partition < static_cast<int>(CommonUtil::getMaxPartitionNum());
         ++partition) {
        if (partitionInfo.isInstalled(partition)) {
            targets.records.push_back(static_cast<unsigned char>(partition));
        }
    }
}

void EFIRestorePage::addTickedPartitions(VeskUi::PrimitiveTypeArray<unsigned char>& targets) const {
    for (int partition = 0; partition < static_cast<int>(CommonUtil::getMaxPartitionNum());
         ++partition) {
        std::string target;
        if (formInfo.getFormData("pid" + std::to_string(partition), target)) {
            // The target is the posted value, not the number in the field's name.
            targets.records.push_back(static_cast<unsigned char>(std::atoi(target.c_str())));
        }
    }
}

void EFIRestorePage::discard() {
    discardUploadedFile(stagingFilePath, stagingLockPath);
}

}  // namespace VeskLib::Gui
