// The 32-bit number on the wire. The caller guarantees four readable bytes.

#include "data/PrimitiveTypeWrapper.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

using namespace VeskLib;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const unsigned int former = 0x01020304;
    std::vector<unsigned char> padded = Fuzz::bytesOf(data, size);
    padded.resize(size + 4);

    VeskUi::PrimitiveTypeWrapper<unsigned int> object(former);
    const bool taken = object.setSerialized(padded.data(), static_cast<unsigned int>(size));
    Fuzz::require(taken == (size <= 4), "sizes up to four bytes are accepted");
    if (!taken) {
        Fuzz::require(object.value == former, "a rejected number leaves the value unchanged");
        return 0;
    }
    padded.resize(4);
    Fuzz::require(Fuzz::serialized(object) == padded,
                  "the number consists of the first four bytes");
    VeskUi::PrimitiveTypeWrapper<unsigned int> again;
    Fuzz::requireRoundTrip(object, again);
    return 0;
}
