#include "client/report/printResult.h"

#include <gmock/gmock.h>

namespace {

using namespace Efictl;

TEST(ForTerminalTest, keepsReadableText) {
    EXPECT_EQ(forTerminal("R&D \u958b\u767a \u00e9 \U0001F600"),
              "R&D \u958b\u767a \u00e9 \U0001F600");
}

TEST(ForTerminalTest, replacesControlCharacters) {
    EXPECT_EQ(forTerminal("\x1b[2J"), "\u241b[2J");
    EXPECT_EQ(forTerminal("a\nb\tc"), "a\u240ab c");
    EXPECT_EQ(forTerminal("\u009b1m\u202ex"), "\uFFFD1m\uFFFDx");
}

TEST(ForTerminalTest, replacesBytesThatAreNotUTF8) {
    EXPECT_EQ(forTerminal("\x9b"
                          "1m\xff\xc2"),
              "\uFFFD1m\uFFFD\uFFFD");
}

TEST(ForTerminalTest, cutsLongText) {
    EXPECT_LT(forTerminal(std::string(100000, 'x')).size(), 5000U);
}

TEST(ResultTest, keepsMostSevereFailure) {
    Result result;
    result.fail(Failure(ExitCode::REFUSED, "refused"));
    result.fail(Failure(ExitCode::UNKNOWN, "unknown"));
    result.fail(Failure(ExitCode::DIFFERENT, "different"));
    EXPECT_EQ(result.exitCode, ExitCode::UNKNOWN);
    EXPECT_EQ(result.reason->text, "unknown");
}

}  // namespace
