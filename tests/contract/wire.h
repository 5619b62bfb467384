#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Test {

using Bytes = std::vector<unsigned char>;

// Returns the wire form of an object.
Bytes serialize(const VeskUi::SerializableObject& object);

// Calls setSerialized() with the bytes and returns its result.
bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes);

}  // namespace VeskLib::Test
