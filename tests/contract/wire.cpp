#include "tests/contract/wire.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

Bytes serialize(const VeskUi::SerializableObject& object) {
    Bytes bytes(object.getSerializedSize());
    EXPECT_EQ(object.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size())),
              bytes.size());
    return bytes;
}

bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes) {
    return object.setSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

}  // namespace VeskLib::Test
