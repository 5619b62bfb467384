#pragma once

#include "board/backend/BoardDescription.h"

#include <vector>

namespace VeskLib::Board {

// Returns the serialized packet that answers the getInfo request `number`, filled from
// `description`. Throws Refusal if there is no such request.
std::vector<unsigned char> packetFor(unsigned int number, const BoardDescription& description);

}  // namespace VeskLib::Board
