#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Fuzz {

// The object's wire form. Requires that it is as long as the object says.
std::vector<unsigned char> serialized(const VeskUi::SerializableObject& object);

// Requires that the object's wire form, given to `empty`, is accepted and written again as it was.
void requireRoundTrip(const VeskUi::SerializableObject& object, VeskUi::SerializableObject& empty);

// Gives these bytes to the object, and requires that it holds exactly them, or what it held. What
// the object throws passes through.
void take(VeskUi::SerializableObject& object, const std::vector<unsigned char>& bytes);

}  // namespace VeskLib::Fuzz
