// The counted list of arrays. An element that rejects its bytes stays empty, so the written bytes
// may differ from those read. The written bytes survive a round trip unchanged.

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
        Fuzz::require(2 * collection.elements.size() <= size,
                      "every element was preceded by its length");
    }
    std::size_t total = 0;
    for (const auto& element : collection.elements) {
        Fuzz::require(element != nullptr, "no element is null");
        total += element->records.size();
    }
    Fuzz::require(total <= size, "the elements contain no more bytes than the input");
    if (taken) {
        Fuzz::require(collection.elements.size() == std::size_t{bytes[0]} * 256 + bytes[1],
                      "the number of elements is the announced one");
    }
    Collection again;
    Fuzz::requireRoundTrip(collection, again);
    return 0;
}
