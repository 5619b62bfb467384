// The packet of the installed boards. It is either taken exactly as it came, or not at all.

#include "data/HardInstallInfoPacket.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <VeskLib/PException.h>

using namespace VeskLib;
using VeskUi::HardInstallInfoPacket;

namespace {

// No number is out of a query's reach.
void query(const HardInstallInfoPacket& packet) {
    for (const int number : {-1, 0, 15, 16, 0x7FFFFFFF}) {
        for (const int kind : {-1, 0, 1, 2, 3}) {
            const bool installed = packet.isInstalled(kind, number);
            Fuzz::require(!installed || (kind >= 0 && kind <= 2 && number >= 0),
                          "only a board that there can be is installed");
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
        // A member that is malformed throws.
        Fuzz::require(Fuzz::serialized(packet) == former, "what throws changes nothing");
    }
    query(packet);
    return 0;
}
