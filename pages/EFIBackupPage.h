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
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;

    // The value of "hidden_status" that asks for a backup.
    static constexpr const char* BACKUP_MODE = "BACKUP";

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
