#pragma once

#include "board/backend/BoardDescription.h"

namespace VeskLib::Test {

// Returns a board with six partitions; partition 5 is not installed:
//
//   0  BIOS 1.23 B, initial configuration "zero"
//   1  BIOS 1.9, "one"
//   2  BIOS 2.0, "two"
//   3  no home board, so its BIOS version is "-", "three"
//   4  BIOS 1.23 B, running, "four"
Board::BoardDescription makeSampleBoard();

}  // namespace VeskLib::Test
