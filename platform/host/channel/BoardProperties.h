#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// What the back-end tells every process of the board through the file BOARD_PROPERTIES: one
// "name=value" line per property.
struct BoardProperties {
    unsigned int maxPartitions = 0;
    std::vector<std::string> hosts;  // "host": the names that the board answers to
};

std::vector<unsigned char> encode(const BoardProperties& properties);

// Unknown lines are passed over. False, with `properties` unchanged, when `max_partitions` is
// missing or its value is not a decimal number.
bool decode(const std::vector<unsigned char>& bytes, BoardProperties& properties);

// The properties of this process's board, read once; as they are made when there is no back-end
// yet. Throws PException when the file is there and cannot be read.
const BoardProperties& boardProperties();

}  // namespace VeskLib::Host
