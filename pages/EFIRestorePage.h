#pragma once

#include "data/HardInstallInfoPacket.h"
#include "pages/AbstractBackupRestorePage.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The restore page, function 106. The operator uploads a configuration file, compares it with the
// partitions, and restores it to the selected ones or discards it. Each step is a separate request,
// identified by "hidden_status"; only the staged file remains between them.
class EFIRestorePage : public AbstractBackupRestorePage {
public:
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;     // of the upload form
    static const std::string skeletonFileNameSel;  // of the target selection

    // Carries out the posted step and builds the page.
    EFIRestorePage(CGIRequester& requester, FormInfo& form, MessageMgr& messages, int* displayMode);

    // Builds the upload form.
    void makeDispPage() override;

    // Carries out the posted step and builds the form for the next one.
    void makeConfigPage() override;

private:
    // Builds the target selection for the staged file, or reports an error.
    void makeSelectPage();
    void rejectStagedFile();
    void putFileComponents(const ConfigurationFacts& file);
    void putFormComponents();
    std::unique_ptr<HTMLItem> makeRow(unsigned int partition, bool versionsKnown,
                                      const VeskUi::VersionInfoPacket& versions);

    // Finds the home system board of `partition`. If there is none, sets `found` to false and
    // `sbNumber` to 255.
    void getHomeSBNum(unsigned int partition, bool& found, unsigned int& sbNumber);

    // Restores the staged file to the selected partitions.
    void restore();
    void addInstalledPartitions(VeskUi::PrimitiveTypeArray<unsigned char>& targets) const;
    void addTickedPartitions(VeskUi::PrimitiveTypeArray<unsigned char>& targets) const;

    void discard();

    int requestStatus;
    bool restoreFinished;
    std::string stagingFilePath;
    std::string stagingLockPath;
    VeskUi::PartitionInfoPacket partitionInfo;
    VeskUi::HardInstallInfoPacket hardInstallInfo;
};

}  // namespace VeskLib::Gui
