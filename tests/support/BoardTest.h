#pragma once

#include <gtest/gtest.h>

#include <string>

namespace VeskLib::Test {

// The host path of a board's file, for a test that looks at the file itself.
std::string boardFile(const std::string& path);

// A test on a board's root that the test program has made: every test finds the folders under
// "/var" empty.
class BoardTest : public testing::Test {
protected:
    BoardTest();
};

}  // namespace VeskLib::Test
