// The packet of the partitions. It is either accepted unchanged or rejected.

#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <VeskLib/VeskUi/PartitionInfoPacket.h>

using namespace VeskLib;
using VeskUi::PartitionInfoPacket;

namespace {

// Queries accept any number.
void query(const PartitionInfoPacket& packet) {
    for (const int number : {-1, 0, 1, 255, 65536, 0x7FFFFFFF}) {
        std::vector<unsigned char> ids = {1, 2, 3};
        packet.getNodeIds(number, ids);
        const bool nothing =
            !packet.isInstalled(number) && packet.getPartitionName(number).empty() && ids.empty();
        Fuzz::require(number != -1 || nothing, "there is no partition -1");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PartitionInfoPacket packet;
    Fuzz::take(packet, Fuzz::bytesOf(data, size));
    query(packet);
    return 0;
}
