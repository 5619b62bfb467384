#include "tests/fuzz/support/serialized.h"

#include "tests/fuzz/support/require.h"

namespace VeskLib::Fuzz {

std::vector<unsigned char> serialized(const VeskUi::SerializableObject& object) {
    std::vector<unsigned char> bytes(object.getSerializedSize());
    const unsigned int written =
        object.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    require(written == bytes.size(),
            "an object writes as many bytes as getSerializedSize() returns");
    return bytes;
}

void requireRoundTrip(const VeskUi::SerializableObject& object, VeskUi::SerializableObject& empty) {
    const std::vector<unsigned char> bytes = serialized(object);
    require(empty.setSerialized(bytes.data(), static_cast<unsigned int>(bytes.size())),
            "an object accepts what another one wrote");
    require(serialized(empty) == bytes, "what was accepted is written unchanged");
}

void take(VeskUi::SerializableObject& object, const std::vector<unsigned char>& bytes) {
    const std::vector<unsigned char> former = serialized(object);
    const bool taken = object.setSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    require(serialized(object) == (taken ? bytes : former),
            "an accepted object has the new value, a rejected one the old");
}

}  // namespace VeskLib::Fuzz
