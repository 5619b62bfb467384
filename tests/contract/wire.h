#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Test {

using Bytes = std::vector<unsigned char>;

// The wire form of an object.
Bytes serialize(const VeskUi::SerializableObject& object);

// Returns what setSerialized() returns for these bytes.
bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes);

}  // namespace VeskLib::Test
