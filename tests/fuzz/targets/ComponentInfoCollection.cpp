// The counted list of arrays. An element that does not understand its bytes stays empty, so what
// is written is not always what was read; but it is read and written again as it is.

#include "data/ComponentInfoCollection.h"
#include "data/PrimitiveTypeArray.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/serialized.h"

#include <VeskLib/PException.h>

using namespace VeskLib;
using Collection = VeskUi::ComponentInfoCollection<VeskUi::PrimitiveTypeArray<unsigned char>>;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<unsigned char> bytes = Fuzz::bytesOf(data, size);
    Collection collection;
    bool taken = false;
    try {
        taken = collection.setSerialized(bytes.data(), static_cast<unsigned int>(size));
    } catch (const PException&) {
        Fuzz::require(2 * collection.elements.size() <= size, "every element had its length");
    }
    std::size_t held = 0;
    for (const auto& element : collection.elements) {
        Fuzz::require(element != nullptr, "there is no element that is none");
        held += element->records.size();
    }
    Fuzz::require(held <= size, "the elements hold no more than the bytes that came");
    if (taken) {
        Fuzz::require(collection.elements.size() == std::size_t{bytes[0]} * 256 + bytes[1],
                      "there are as many elements as announced");
    }
    Collection again;
    Fuzz::requireRoundTrip(collection, again);
    return 0;
}
