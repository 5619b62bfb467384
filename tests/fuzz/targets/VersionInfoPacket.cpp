// The packet of the firmware versions. It is either accepted unchanged or rejected.

#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <VeskLib/VeskUi/VersionInfoPacket.h>

using namespace VeskLib;
using VeskUi::VersionInfoPacket;

namespace {

// Queries accept any number.
void query(const VersionInfoPacket& packet) {
    for (const int number : {-1, 0, 1, 15, 65536, 0x7FFFFFFF}) {
        for (const int bank : {-1, 0, 1}) {
            const std::string version = packet.getBIOSVersion(number, bank);
            Fuzz::require((number >= 0 && bank == 0) || version == "-",
                          "an unknown version is \"-\"");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    VersionInfoPacket packet;
    Fuzz::take(packet, Fuzz::bytesOf(data, size));
    query(packet);
    return 0;
}
