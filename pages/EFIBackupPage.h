#pragma once

#include "pages/AbstractBackupRestorePage.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The backup page, function 105. The operator chooses an installed partition, and the browser
// downloads that partition's EFI configuration.
class EFIBackupPage : public AbstractBackupRestorePage {
public:
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;

    // The value of "hidden_status" that requests a backup.
    static constexpr const char* BACKUP_MODE = "BACKUP";

    // Carries out a posted backup and builds the page.
    EFIBackupPage(CGIRequester& requester, FormInfo& formInfo, MessageMgr& messageMgr,
                  int* displayMode);

    // Builds the form with one row per installed partition, or reports an error.
    void makeDispPage() override;

    // Carries out the posted backup and builds the form again.
    void makeConfigPage() override;

private:
    void putFixedComponents();
    std::unique_ptr<HTMLItem> makeRow(unsigned int partition);

    std::string backupFilePath;
    VeskUi::PartitionInfoPacket partitionInfo;
};

}  // namespace VeskLib::Gui
