#include "tests/scripted/Script.h"

#include "data/HardInstallInfoPacket.h"
#include "data/requestNumbers.h"
#include "tests/scripted/Recorder.h"
#include "tests/scripted/systemCalls.h"

#include <VeskLib/VeskUi/VersionInfoPacket.h>

namespace VeskLib::Scripted {

void Script::setPartitions(const std::vector<VeskUi::PartitionInfoPacket::Partition>& partitions) {
    maxPartitionNumbers = {static_cast<unsigned int>(partitions.size())};
    replies[VeskUi::GET_PARTITION_INFO].fill = [partitions](VeskUi::SerializableObject& answer) {
        auto& packet = dynamic_cast<VeskUi::PartitionInfoPacket&>(answer);
        for (const auto& partition : partitions) {
            packet.addPartition(partition);
        }
    };
}

void Script::setVersions(const std::vector<std::string>& versions) {
    replies[VeskUi::GET_VERSION_INFO] = {0, [versions](VeskUi::SerializableObject& answer) {
                                             auto& packet =
                                                 dynamic_cast<VeskUi::VersionInfoPacket&>(answer);
                                             for (const auto& version : versions) {
                                                 packet.addBIOSVersion(version);
                                             }
                                         }};
}

void Script::setBoards(const std::set<int>& installed, const std::set<int>& home) {
    replies[VeskUi::GET_HARD_INSTALL_INFO] = {
        0, [installed, home](VeskUi::SerializableObject& answer) {
            static_cast<void>(dynamic_cast<VeskUi::HardInstallInfoPacket&>(answer));
            script().installedBoards = installed;
            script().homeBoards = home;
        }};
}

Script& script() {
    static Script instance;
    return instance;
}

void startScript() {
    script() = Script();
    forgetRecords();
    scriptSystemCalls(true);
}

void endScript() {
    scriptSystemCalls(false);
}

PException makeScriptedException(unsigned short detail) {
    return {9, 9, 9, 9, detail, 9, 0, 0, 0, 0, 0, 0, 0, 0};
}

}  // namespace VeskLib::Scripted
