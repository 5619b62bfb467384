#pragma once

#include <cstdint>

namespace VeskLib::Host {

// The kinds of boards, as the queries of HardInstallInfoPacket number them. The three high bits of
// a partition's node identifier hold the same number, its four low bits the board's number.
inline constexpr int SYSTEM_BOARD = 0;
inline constexpr int IO_BOARD = 1;
inline constexpr int GSP_BOARD = 2;

// Boards of a kind, numbered from 0.
inline constexpr int BOARDS_OF_A_KIND = 16;

// The word in a board's record. Its other bits, and the half word of I/O boards and GSP boards,
// are zero.
inline constexpr std::uint32_t BOARD_INSTALLED = 0x80000000;
inline constexpr std::uint32_t BOARD_IS_HOME = 0x40000000;  // system boards only

}  // namespace VeskLib::Host
