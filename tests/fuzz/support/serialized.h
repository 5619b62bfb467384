#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Fuzz {

// The object's wire form. Requires that it is as long as the object says.
std::vector<unsigned char> serialized(const VeskUi::SerializableObject& object);

// Requires that the object's wire form, given to `empty`, is accepted and written again as it was.
void requireRoundTrip(const VeskUi::SerializableObject& object, VeskUi::SerializableObject& empty);

}  // namespace VeskLib::Fuzz
