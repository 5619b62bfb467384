#pragma once

#include <gtest/gtest.h>

namespace VeskLib::Test {

// Ends the test program with a failure that names the test when one test takes longer than the
// limit, so that a board that hangs fails the test that finds it, also outside of ctest.
class TimeLimit : public testing::EmptyTestEventListener {
public:
    explicit TimeLimit(unsigned int seconds) : seconds(seconds) {}

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

private:
    unsigned int seconds;
};

}  // namespace VeskLib::Test
