#pragma once

#include <vector>

namespace VeskLib::Host {

// What the back-end tells every process of the board through the file BOARD_PROPERTIES: one
// "name=value" line per property.
struct BoardProperties {
    unsigned int maxPartitions = 0;
};

std::vector<unsigned char> encode(const BoardProperties& properties);

// Unknown lines are passed over. False, with `properties` unchanged, when a known one is missing
// or its value is not a decimal number.
bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties);

}  // namespace VeskLib::Host
