#pragma once

#include <gtest/gtest.h>

namespace VeskLib::Test {

// Exits the test program with a failure that names the test when a test exceeds the time limit, so
// that a board that hangs fails the right test, even outside of ctest.
class TimeLimit : public testing::EmptyTestEventListener {
public:
    explicit TimeLimit(unsigned int seconds) : seconds(seconds) {}

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

private:
    unsigned int seconds;
};

}  // namespace VeskLib::Test
