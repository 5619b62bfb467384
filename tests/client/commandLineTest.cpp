#include "client/command/commandLine.h"

#include "client/Failure.h"

#include <gmock/gmock.h>

namespace {

using namespace Efictl;

CommandLine read(std::vector<const char*> words) {
    words.insert(words.begin(), "efictl");
    return readCommandLine(static_cast<int>(words.size()), words.data());
}

std::string addressOf(const std::string& board, bool insecure = false) {
    Options options;
    options.board = board;
    options.insecure = insecure;
    return boardAddress(options);
}

TEST(CommandLineTest, readsPartitionsInEveryForm) {
    const CommandLine line = read({"restore", "--to", "1,2", "--to", "3", "a.dat"});
    ASSERT_TRUE(line.isReady) << line.text;
    EXPECT_THAT(line.options.partitions, testing::ElementsAre(1U, 2U, 3U));
    EXPECT_THAT(line.options.files, testing::ElementsAre("a.dat"));
}

TEST(CommandLineTest, rejectsInvalidCommandLines) {
    EXPECT_FALSE(read({}).isReady);
    EXPECT_FALSE(read({"backup", "--out", "o"}).isReady);
    EXPECT_FALSE(read({"backup", "--out", "o", "--all", "--partition", "1"}).isReady);
    EXPECT_FALSE(read({"backup", "--out", "o", "--partition", "256"}).isReady);
    EXPECT_FALSE(read({"backup", "--out", "o", "--all", "--keep", "0"}).isReady);
    EXPECT_FALSE(read({"restore", "a.dat"}).isReady);
    EXPECT_FALSE(read({"restore", "a.dat", "b.dat", "--all"}).isReady);
    EXPECT_FALSE(read({"diff", "a.dat"}).isReady);
    EXPECT_FALSE(read({"diff", "--against-board"}).isReady);
    EXPECT_FALSE(read({"diff", "--against-board", "a.dat", "--out", "o"}).isReady);
    EXPECT_FALSE(read({"list", "--password", "p"}).isReady);
}

TEST(CommandLineTest, showsHelp) {
    const CommandLine line = read({"restore", "--help"});
    EXPECT_TRUE(line.isHelp);
    EXPECT_THAT(line.text, testing::HasSubstr("--require-same-version"));
}

TEST(BoardAddressTest, isSchemeNameAndPort) {
    EXPECT_EQ(addressOf("https://board.example/"), "https://board.example");
    EXPECT_EQ(addressOf("https://board.example:8443"), "https://board.example:8443");
    EXPECT_EQ(addressOf("board.example"), "https://board.example");
    EXPECT_EQ(addressOf("https://[::1]:1/"), "https://[::1]:1");
    EXPECT_EQ(addressOf("http://localhost:8080"), "http://localhost:8080");
}

TEST(BoardAddressTest, refusesHTTPToOtherMachines) {
    EXPECT_THROW(addressOf("http://board.example"), Failure);
    EXPECT_THROW(addressOf("http://localhost.evil.example"), Failure);
    EXPECT_THROW(addressOf("http://127.evil.example"), Failure);
    EXPECT_EQ(addressOf("http://board.example", true), "http://board.example");
}

}  // namespace
