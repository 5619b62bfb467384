#pragma once

#include <VeskLib/VeskUi/SerializableObject.h>

namespace VeskLib::VeskUi {

// The base of the packets in which the back-end answers.
class SerializablePacket : public SerializableObject {};

}  // namespace VeskLib::VeskUi
