#include "tests/scripted/Script.h"

#include "data/requestNumbers.h"
#include "tests/scripted/Recorder.h"
#include "tests/scripted/systemCalls.h"

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
