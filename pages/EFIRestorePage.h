#pragma once

#include "data/HardInstallInfoPacket.h"
#include "pages/AbstractBackupRestorePage.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>

#include <memory>
#include <string>

namespace VeskLib::Gui {

// The restore screen, function 106: the operator uploads a configuration file, sees what it holds
// beside the partitions, and has it restored to the ticked ones or throws it away. Each step is a
// request of its own; "hidden_status" names it, and the staged file is all that lasts between them.
class EFIRestorePage : public AbstractBackupRestorePage {
public:
    static constexpr const char* FILE_EXTENSION = AbstractBackupRestorePage::FILE_EXTENSION;
    static const std::string skeletonFileName;     // of the upload form
    static const std::string skeletonFileNameSel;  // of the target selection

    // Does all of the page's work, the posted step included.
    EFIRestorePage(CGIRequester& requester, FormInfo& form, MessageMgr& messages, int* displayMode);

    // Builds the upload form.
    void makeDispPage() override;

    // Carries out the posted step and builds what follows it.
    void makeConfigPage() override;

private:
    // Builds the target selection for the staged file, or reports why it cannot.
    void makeSelectPage();
    void rejectStagedFile();
    void putFileComponents(const ConfigurationFacts& file);
    void putFormComponents();
    std::unique_ptr<HTMLItem> makeRow(unsigned int partition, bool versionsKnown,
                                      const VeskUi::VersionInfoPacket& versions);

    // Finds the home system board of `partition`. Without one, `found` is false and `sbNumber`
    // 255.
    void getHomeSBNum(unsigned int partition, bool& found, unsigned int& sbNumber);

    // Has the staged file restored to the ticked partitions.
    void restore();
    void addInstalledPartitions(VeskUi::PrimitiveTypeArray<unsigned char>& targets) const;
    void addTickedPartitions(VeskUi::PrimitiveTypeArray<unsigned char>& targets) const;

    // Throws the staged file away.
    void discard();

    int requestStatus;
    bool restoreFinished;
    std::string stagingFilePath;
    std::string stagingLockPath;
    VeskUi::PartitionInfoPacket partitionInfo;
    VeskUi::HardInstallInfoPacket hardInstallInfo;
};

}  // namespace VeskLib::Gui
