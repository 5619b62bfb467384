#pragma once

#include <gtest/gtest.h>

#include <string>

namespace VeskLib::Test {

// Returns the path on the host of a file of the board. Throws std::runtime_error if BOARD_ROOT is
// not set.
std::string boardFile(const std::string& path);

// A fixture on the board root that the test program has made. Empties the folders under "/var"
// before each test.
class BoardTest : public testing::Test {
protected:
    BoardTest();
};

}  // namespace VeskLib::Test
