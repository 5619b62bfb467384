#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

namespace VeskLib::VeskUi {

// The base of the packets that the back-end sends as answers.
class SerializablePacket : public SerializableObject {};

}  // namespace VeskLib::VeskUi
