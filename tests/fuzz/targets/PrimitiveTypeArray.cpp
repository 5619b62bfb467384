// The counted arrays of every record type, each given the same bytes.

#include "data/PrimitiveTypeArray.h"
#include "data/HardInstallInfoPacket.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <algorithm>

using namespace VeskLib;
using VeskUi::HardInstallInfoPacket;

namespace {

template <typename Record>
void check(const std::vector<unsigned char>& bytes) {
    VeskUi::PrimitiveTypeArray<Record> array;
    const auto size = static_cast<unsigned int>(bytes.size());
    if (!array.setSerialized(bytes.data(), size)) {
        Fuzz::require(array.records.empty(), "a rejected array stays empty");
        return;
    }
    const std::vector<unsigned char> written = Fuzz::serialized(array);
    Fuzz::require(
        written.size() <= bytes.size() && std::equal(written.begin(), written.end(), bytes.begin()),
        "the bytes that were read are written unchanged");
    VeskUi::PrimitiveTypeArray<Record> again;
    Fuzz::requireRoundTrip(array, again);

    const std::size_t count = array.records.size();
    Fuzz::require(array.setSerialized(bytes.data(), size) && array.records.size() == 2 * count,
                  "a second call appends the same records");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    check<unsigned char>(bytes);
    check<HardInstallInfoPacket::SBData>(bytes);
    check<HardInstallInfoPacket::IOBData>(bytes);
    check<HardInstallInfoPacket::GSPBData>(bytes);
    return 0;
}
