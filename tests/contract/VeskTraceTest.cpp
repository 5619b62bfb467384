#include <VeskLib/trace/VeskTrace.h>

#include "tests/contract/TraceLines.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace VeskLib::Test {

using testing::HasSubstr;
using testing::SizeIs;
using trace::VeskTrace;

class VeskTraceContractTest : public testing::Test {
protected:
    void SetUp() override {
        if (!trace.isFile()) {
            GTEST_SKIP() << "The trace log is not a file.";
        }
    }

    std::vector<std::string> newLines() const { return trace.added(); }

    const TraceLines trace;
    const std::string& path = trace.hostPath();
};

TEST_F(VeskTraceContractTest, writesOneLinePerCall) {
    VeskTrace log(1, 2, 29697);
    log.putLog(0, "AbstractBackupRestorePage::upload failed");
    log.putLog(0, "Illegal query string (107)");
    const std::vector<std::string> lines = newLines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_THAT(lines[0], HasSubstr("AbstractBackupRestorePage::upload failed"));
    EXPECT_THAT(lines[1], HasSubstr("Illegal query string (107)"));
    EXPECT_EQ(readText(path).back(), '\n');
}

TEST_F(VeskTraceContractTest, writesLineForEmptyText) {
    VeskTrace(1, 2, 29696).putLog(0, "");
    EXPECT_THAT(newLines(), SizeIs(1));
}

TEST_F(VeskTraceContractTest, hostileTextCannotForgeLine) {
    VeskTrace log(1, 2, 29696);
    for (const std::string& text : hostileTexts()) {
        log.putLog(0, text.c_str());
    }
    const std::vector<std::string> lines = newLines();
    EXPECT_THAT(lines, SizeIs(hostileTexts().size()));
    for (const std::string& line : lines) {
        EXPECT_TRUE(std::none_of(line.begin(), line.end(), [](unsigned char byte) {
            return byte < 0x20 || byte == 0x7F;
        })) << line;
    }
}

TEST_F(VeskTraceContractTest, keepsWholeTextOf255Bytes) {
    const std::string text(255, 'x');
    VeskTrace(1, 2, 29696).putLog(0, text.c_str());
    ASSERT_THAT(newLines(), SizeIs(1));
    EXPECT_THAT(newLines()[0], HasSubstr(text));
}

TEST_F(VeskTraceContractTest, ignoresUnwritableLog) {
    const std::filesystem::path aside = path + ".aside";
    if (exists(path)) {
        std::filesystem::rename(path, aside);
    }
    std::filesystem::create_directory(path);
    VeskTrace(1, 2, 29696).putLog(0, "nowhere to go");
    std::filesystem::remove(path);
    if (std::filesystem::exists(aside)) {
        std::filesystem::rename(aside, path);
    }
    VeskTrace(1, 2, 29696).putLog(0, "back again");
    EXPECT_THAT(newLines(), SizeIs(1));
}

}  // namespace VeskLib::Test
