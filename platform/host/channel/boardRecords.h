#pragma once

#include <cstdint>

namespace VeskLib::Host {

// The kinds of boards in the queries of HardInstallInfoPacket.
inline constexpr int SYSTEM_BOARD = 0;
inline constexpr int IO_BOARD = 1;
inline constexpr int GSP_BOARD = 2;

// A node identifier of a partition has the kind of the board in its three high bits and the number
// of the board in its four low bits. Bit 4 is not part of either.
constexpr int nodeKind(unsigned char node) {
    return node >> 5;
}
constexpr unsigned int nodeNumber(unsigned char node) {
    return node & 0x0FU;
}

// The maximum number of boards of each kind, numbered from 0.
inline constexpr int BOARDS_OF_A_KIND = 16;

// Bits of the word in a board's record. The other bits are zero, and so is the half word of I/O
// boards and GSP boards.
inline constexpr std::uint32_t BOARD_INSTALLED = 0x80000000;
inline constexpr std::uint32_t BOARD_IS_HOME = 0x40000000;  // system boards only

}  // namespace VeskLib::Host
