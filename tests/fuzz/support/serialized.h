#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Fuzz {

// Returns the object's wire form. Requires that its length is getSerializedSize().
std::vector<unsigned char> serialized(const VeskUi::SerializableObject& object);

// Requires that `empty` accepts the object's wire form and writes the same bytes again.
void requireRoundTrip(const VeskUi::SerializableObject& object, VeskUi::SerializableObject& empty);

// Passes the bytes to setSerialized(), and requires that the object then serializes to them, or to
// its former bytes if it rejected them. Exceptions of the object propagate.
void take(VeskUi::SerializableObject& object, const std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Fuzz
