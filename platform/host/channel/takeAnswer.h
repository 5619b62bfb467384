#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

#include <vector>

namespace VeskLib::Host {

// Sets `answer` from the payload of a reply. Returns 0, or CHANNEL_BAD_OBJECT if the object rejects
// the bytes.
int takeAnswer(std::vector<unsigned char> payload, VeskUi::SerializableObject& answer);

}  // namespace VeskLib::Host
