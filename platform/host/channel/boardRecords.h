#pragma once

#include <cstdint>

namespace VeskLib::Host {

// The kinds of boards, as the queries of HardInstallInfoPacket number them.
inline constexpr int SYSTEM_BOARD = 0;
inline constexpr int IO_BOARD = 1;
inline constexpr int GSP_BOARD = 2;

// A partition's node identifier holds the kind of a board in its three high bits and the board's
// number in its four low bits. Bit 4 says nothing about which board it is.
constexpr int nodeKind(unsigned char node) {
    return node >> 5;
}
constexpr unsigned int nodeNumber(unsigned char node) {
    return node & 0x0FU;
}

// Boards of a kind, numbered from 0.
inline constexpr int BOARDS_OF_A_KIND = 16;

// The word in a board's record. Its other bits, and the half word of I/O boards and GSP boards,
// are zero.
inline constexpr std::uint32_t BOARD_INSTALLED = 0x80000000;
inline constexpr std::uint32_t BOARD_IS_HOME = 0x40000000;  // system boards only

}  // namespace VeskLib::Host
