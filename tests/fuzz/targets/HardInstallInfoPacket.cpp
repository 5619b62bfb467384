// The packet of the installed boards. It is either accepted unchanged or rejected.

#include "data/HardInstallInfoPacket.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <VeskLib/PException.h>

using namespace VeskLib;
using VeskUi::HardInstallInfoPacket;

namespace {

// Queries accept any number.
void query(const HardInstallInfoPacket& packet) {
    for (const int number : {-1, 0, 15, 16, 0x7FFFFFFF}) {
        for (const int kind : {-1, 0, 1, 2, 3}) {
            const bool installed = packet.isInstalled(kind, number);
            Fuzz::require(!installed || (kind >= 0 && kind <= 2 && number >= 0),
                          "only boards of known kinds and valid numbers are installed");
            packet.isHome(kind, number, 0);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    HardInstallInfoPacket packet;
    const std::vector<unsigned char> former = Fuzz::serialized(packet);
    try {
        Fuzz::take(packet, Fuzz::bytesOf(data, size));
    } catch (const PException&) {
        // A malformed member throws.
        Fuzz::require(Fuzz::serialized(packet) == former,
                      "an exception leaves the packet unchanged");
    }
    query(packet);
    return 0;
}
