#include <VeskLib/trace/VeskTrace.h>

#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <list>

namespace VeskLib::Test {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::SizeIs;
using trace::VeskTrace;

namespace {

const std::size_t MEGABYTE = 1024 * 1024;
const std::string LOG = "/var/log/trace.log";
const std::string FORMER_LOG = "/var/log/trace.log.1";

void put(const std::string& text) {
    VeskTrace(1, 2, 29697).putLog(0, text.c_str());
}

// Returns a log of `size` bytes that consists of lines.
std::string fill(std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += std::string(std::min<std::size_t>(99, size - text.size() - 1), 'o') + "\n";
    }
    return text;
}

}  // namespace

class VeskTraceHostTest : public BoardTest {
protected:
    static std::vector<std::string> lines() { return linesOf(readText(boardFile(LOG))); }
};

TEST_F(VeskTraceHostTest, writesTimeProcessPlaceAndText) {
    put("the text");
    EXPECT_THAT(lines(), testing::ElementsAre(MatchesRegex(
                             "....-..-..T..:..:..Z .[0-9]+. 1\\.2\\.7401 level 0: the text")));
    EXPECT_THAT(lines()[0], HasSubstr("[" + std::to_string(::getpid()) + "]"));
    VeskTrace(255, 255, 65535).putLog(255, "");
    EXPECT_THAT(lines()[1], EndsWith(" 255.255.FFFF level 255: "));
}

TEST_F(VeskTraceHostTest, isPrivateWhateverTheUmask) {
    const mode_t mask = ::umask(0);
    put("text");
    ::umask(mask);
    struct stat status = {};
    ASSERT_EQ(::stat(boardFile(LOG).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(VeskTraceHostTest, writesCurrentTime) {
    put("text");
    const std::time_t now = std::time(nullptr);
    std::string day(10, ' ');
    std::string dayBefore(10, ' ');
    const auto write = [](std::string& text, std::time_t moment) {
        std::tm utc = {};
        ::gmtime_r(&moment, &utc);
        text.resize(std::strftime(text.data(), text.size() + 1, "%Y-%m-%d", &utc));
    };
    write(day, now);
    write(dayBefore, now - 60);
    EXPECT_THAT(lines()[0].substr(0, 10), testing::AnyOf(day, dayBefore));
}

TEST_F(VeskTraceHostTest, escapesControlCharacters) {
    put("a\nb\r\tc\x1B[0m\x7F\x01z");
    EXPECT_THAT(lines(),
                testing::ElementsAre(EndsWith("level 0: a\\x0Ab\\x0D\\x09c\\x1B[0m\\x7F\\x01z")));
    put("caf\xC3\xA9 \xFF \\ %s");
    EXPECT_THAT(lines()[1], EndsWith("level 0: caf\xC3\xA9 \xFF \\ %s"));
}

TEST_F(VeskTraceHostTest, truncatesLongText) {
    put(std::string(2048, 'x'));
    put(std::string(2049, 'x'));
    put(std::string(100000, '\n'));
    const std::vector<std::string> traced = lines();
    ASSERT_THAT(traced, SizeIs(3));
    EXPECT_EQ(traced[0].size(), traced[1].size());
    EXPECT_EQ(std::count(traced[0].begin(), traced[0].end(), 'x'), 2048);
    EXPECT_LT(traced[2].size(), 4u * 2048 + 100);
}

TEST_F(VeskTraceHostTest, isNotAccessibleToOthers) {
    put("text");
    struct stat status = {};
    ASSERT_EQ(::stat(boardFile(LOG).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0137U, 0u);
}

TEST_F(VeskTraceHostTest, rotatesFullLog) {
    const std::string full = fill(MEGABYTE);
    writeText(boardFile(LOG), full);
    writeText(boardFile(FORMER_LOG), "the one before");
    put("first of the new log");
    EXPECT_EQ(readText(boardFile(FORMER_LOG)), full);
    EXPECT_THAT(lines(), testing::ElementsAre(HasSubstr("first of the new log")));
}

TEST_F(VeskTraceHostTest, appendsToLogThatIsNotFull) {
    writeText(boardFile(LOG), fill(MEGABYTE - 1));
    put("goes on");
    EXPECT_FALSE(exists(boardFile(FORMER_LOG)));
    EXPECT_THAT(lines().back(), HasSubstr("goes on"));
}

TEST_F(VeskTraceHostTest, boundsSizeOfFiles) {
    const std::string text(2000, 't');
    for (int i = 0; i < 1700; ++i) {
        put(text);
    }
    EXPECT_THAT(namesIn(boardFile("/var/log")), testing::ElementsAre("trace.log", "trace.log.1"));
    const std::size_t oneLine = 3000;
    EXPECT_LT(readText(boardFile(LOG)).size(), MEGABYTE + oneLine);
    EXPECT_LT(readText(boardFile(FORMER_LOG)).size(), MEGABYTE + oneLine);
}

TEST_F(VeskTraceHostTest, boundsLogThatCannotBeRotated) {
    writeText(boardFile(LOG), fill(MEGABYTE));
    std::filesystem::create_directory(boardFile(FORMER_LOG));
    const std::string text(2000, 't');
    for (int i = 0; i < 10; ++i) {
        put(text);
    }
    EXPECT_LT(readText(boardFile(LOG)).size(), MEGABYTE + 10 * text.size());
}

TEST_F(VeskTraceHostTest, keepsConcurrentLinesWholeDuringRotation) {
    const int processes = 4;
    const int linesEach = 300;
    writeText(boardFile(LOG), fill(MEGABYTE - 60000));
    std::list<ChildProcess> children;
    for (int process = 0; process < processes; ++process) {
        children.emplace_back([process] {
            for (int i = 0; i < linesEach; ++i) {
                put("<" + std::to_string(process) + "-" + std::to_string(i) + ">" +
                    std::string(100, 'x'));
            }
            return 0;
        });
    }
    for (ChildProcess& child : children) {
        EXPECT_EQ(child.wait().exitStatus, 0);
    }
    std::vector<std::string> found;
    for (const std::string& line :
         linesOf(readText(boardFile(FORMER_LOG)) + readText(boardFile(LOG)))) {
        if (line.front() != 'o') {
            EXPECT_THAT(line, MatchesRegex("20.*level 0: <[0-9]-[0-9]+>x+"));
            EXPECT_THAT(line, EndsWith(">" + std::string(100, 'x')));
            found.push_back(line.substr(line.find('<')));
        }
    }
    EXPECT_THAT(found, SizeIs(processes * linesEach));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(std::unique(found.begin(), found.end()), found.end());
}

TEST_F(VeskTraceHostTest, doesNotFollowLink) {
    const std::string elsewhere = boardFile("/var/tmp/elsewhere");
    writeText(elsewhere, "precious");
    ASSERT_EQ(::symlink(elsewhere.c_str(), boardFile(LOG).c_str()), 0);
    put("text");
    EXPECT_EQ(readText(elsewhere), "precious");
}

TEST_F(VeskTraceHostTest, skipsPipeWithoutBlocking) {
    ASSERT_EQ(::mkfifo(boardFile(LOG).c_str(), 0600), 0);
    // Runs in a child process, which is killed if it waits for the pipe's other end.
    const auto putInChild = [] {
        return runInChild([] {
                   put("text");
                   return 0;
               })
            .exitStatus;
    };
    EXPECT_EQ(putInChild(), 0);
    const int reader = ::open(boardFile(LOG).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(putInChild(), 0);
    char byte = 0;
    EXPECT_EQ(::read(reader, &byte, 1), 0) << "something was written to the pipe";
    ::close(reader);
}

TEST_F(VeskTraceHostTest, ignoresMissingFolder) {
    std::filesystem::remove_all(boardFile("/var/log"));
    EXPECT_NO_THROW(put("text"));
    EXPECT_FALSE(exists(boardFile("/var/log")));
}

TEST_F(VeskTraceHostTest, leavesNoDescriptorOpen) {
    const auto lowestFree = [] {
        const int descriptor = ::dup(STDERR_FILENO);
        ::close(descriptor);
        return descriptor;
    };
    const int before = lowestFree();
    put("text");
    writeText(boardFile(LOG), fill(MEGABYTE));
    put("text");
    std::filesystem::remove(boardFile(LOG));
    ASSERT_EQ(::mkfifo(boardFile(LOG).c_str(), 0600), 0);
    put("text");
    EXPECT_EQ(lowestFree(), before);
}

}  // namespace VeskLib::Test
