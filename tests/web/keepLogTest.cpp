// Tests of keep_log, which writes the web server's log.

#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

namespace {

const std::size_t MEGABYTE = 1024 * 1024;

class KeepLogTest : public BoardTest {
protected:
    static void keep(const std::string& input) {
        ChildSetup setup;
        setup.input = input;
        const ChildResult result = runProgram({KEEP_LOG, boardFile("/var/log/web.log")}, setup);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.errors, "");
    }

    static std::string log() { return readText(boardFile("/var/log/web.log")); }
};

}  // namespace

TEST_F(KeepLogTest, appendsLines) {
    keep("one\ntwo\n");
    keep("three\n");
    EXPECT_EQ(log(), "one\ntwo\nthree\n");
}

TEST_F(KeepLogTest, endsUnfinishedLine) {
    keep("one\ntw");
    EXPECT_EQ(log(), "one\ntw\n");
}

TEST_F(KeepLogTest, limitsSizeOfLog) {
    std::string input;
    while (input.size() < 5 * MEGABYTE) {
        input += std::string(99, 'x') + "\n";
    }
    keep(input + "the last line\n");
    const std::string former = readText(boardFile("/var/log/web.log.1"));
    EXPECT_LE(log().size(), MEGABYTE + 16 * 1024);
    EXPECT_LE(former.size(), MEGABYTE + 16 * 1024);
    EXPECT_GE(former.size(), MEGABYTE);
    EXPECT_TRUE(log().ends_with("the last line\n"));
    EXPECT_EQ(namesIn(boardFile("/var/log")).size(), 2U);
}

TEST_F(KeepLogTest, splitsEndlessLine) {
    keep(std::string(3 * MEGABYTE, 'x'));
    EXPECT_LE(log().size(), MEGABYTE + 32 * 1024);
}

TEST_F(KeepLogTest, rejectsWrongUse) {
    EXPECT_EQ(runProgram({KEEP_LOG}, {}).exitStatus, 2);
}

}  // namespace VeskLib::Test
