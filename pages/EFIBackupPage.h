#pragma once

#include "pages/AbstractBackupRestorePage.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The backup screen, function 105: the operator picks an installed partition, and the browser
// saves that partition's EFI configuration.
class EFIBackupPage : public AbstractBackupRestorePage {
public:
    static const char* const FILE_EXTENSION;
    static const std::string skeletonFileName;

    // The value of "hidden_status" that asks for a backup.
    static const char* const BACKUP_MODE;

    // Does all of the page's work, the posted backup included.
    EFIBackupPage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                  int* displayMode);

    // Builds the form with one row per installed partition, or reports why it cannot.
    void makeDispPage() override;

    // Carries out the posted backup and shows the form again.
    void makeConfigPage() override;

private:
    void putFixedComponents();
    std::unique_ptr<HTMLItem> makeRow(unsigned int partition);

    std::string backupFilePath;
    VeskUi::PartitionInfoPacket partitionInfo;
};

}  // namespace VeskLib::Gui
