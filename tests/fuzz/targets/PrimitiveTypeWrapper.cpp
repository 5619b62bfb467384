// The one 32-bit number on the wire. The caller of the wrapper guarantees four readable bytes.

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
    Fuzz::require(taken == (size <= 4), "no more than four bytes are a number");
    if (!taken) {
        Fuzz::require(object.value == former, "a refused number leaves the former one");
        return 0;
    }
    padded.resize(4);
    Fuzz::require(Fuzz::serialized(object) == padded, "the number is that of the first four bytes");
    VeskUi::PrimitiveTypeWrapper<unsigned int> again;
    Fuzz::requireRoundTrip(object, again);
    return 0;
}
