#include <VeskLib/CommonUtil.h>

#include "platform/host/base/platformException.h"
#include "platform/host/channel/BoardProperties.h"
#include "tests/backend/support/RootTest.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"

#include <VeskLib/PException.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace VeskLib::Test {

namespace {

const char* const BOARD_PROPERTIES = "/var/run/board_properties";

class CommonUtilTest : public RootTest {
protected:
    // Returns the number in a new process while the properties file contains `text`.
    unsigned int numberFor(const std::string& text) {
        writeText(boardFile(BOARD_PROPERTIES), text);
        return numberInNewProcess();
    }

    // Returns the number in a new process, because each process reads it only once.
    static unsigned int numberInNewProcess() {
        const ChildResult result =
            runInChild([] { return static_cast<int>(CommonUtil::getMaxPartitionNum()); });
        EXPECT_EQ(result.signal, 0);
        return static_cast<unsigned int>(result.exitStatus);
    }
};

}  // namespace

TEST_F(CommonUtilTest, readsNumberFromProperties) {
    EXPECT_EQ(numberFor("max_partitions=8\n"), 8U);
    EXPECT_EQ(numberFor("other=1\nmax_partitions=16\nmore=2\n"), 16U);
    EXPECT_EQ(numberFor("max_partitions=4"), 4U);
    EXPECT_EQ(numberFor("max_partitions=0\n"), 0U);
}

TEST_F(CommonUtilTest, numberIsZeroWithoutValidProperty) {
    EXPECT_EQ(numberInNewProcess(), 0U);
    for (const char* text : {"", "max_partitions=\n", "max_partitions=x\n", "max_partitions=8x\n",
                             "max_partitions=-1\n", "max_partitions=99999999999\n", "8\n"}) {
        EXPECT_EQ(numberFor(text), 0U) << text;
    }
}

TEST_F(CommonUtilTest, throwsForUnreadableProperties) {
    ASSERT_EQ(::mkdir(boardFile(BOARD_PROPERTIES).c_str(), 0700), 0);
    const ChildResult result = runInChild([] {
        try {
            return static_cast<int>(CommonUtil::getMaxPartitionNum());
        } catch (const PException& exception) {
            return exception.getExceptionDetail() == Host::FILE_NOT_READABLE ? 100 : 101;
        }
    });
    EXPECT_EQ(result.exitStatus, 100) << result.errors;
}

TEST_F(CommonUtilTest, numberDoesNotChangeWithinAProcess) {
    writeText(boardFile(BOARD_PROPERTIES), "max_partitions=8\n");
    const ChildResult result = runInChild([] {
        const unsigned int before = CommonUtil::getMaxPartitionNum();
        writeText(boardFile(BOARD_PROPERTIES), "max_partitions=5\n");
        return before == 8 && CommonUtil::getMaxPartitionNum() == 8 ? 0 : 1;
    });
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
}

TEST(BoardProperties, encodeAndDecode) {
    Host::BoardProperties published;
    published.maxPartitions = 8;
    published.name = "Rack 4, row 12 = east";
    published.hosts = {"localhost", "[::1]"};
    published.users["admin"] = {.everyFunction = true, .functions = ""};
    published.users["the night shift"] = {.everyFunction = false, .functions = ",105,106,"};
    published.users["two\nlines"] = {};
    published.syslogSocket = "/dev/log";
    const Bytes bytes = encode(published);
    EXPECT_EQ(
        std::string(bytes.begin(), bytes.end()),
        "max_partitions=8\nname=Rack 4, row 12 = east\nhost=localhost\nhost=[::1]\nuser=1 - admin\n"
        "user=0 ,105,106, the night shift\n"
        "syslog_socket=/dev/log\n");
    Host::BoardProperties properties;
    ASSERT_TRUE(decode(bytes, properties));
    EXPECT_EQ(properties.maxPartitions, 8U);
    EXPECT_EQ(properties.name, published.name);
    EXPECT_EQ(properties.hosts, published.hosts);
    ASSERT_EQ(properties.users.size(), 2U);
    EXPECT_TRUE(properties.users["admin"].everyFunction);
    EXPECT_EQ(properties.users["admin"].functions, "");
    EXPECT_FALSE(properties.users["the night shift"].everyFunction);
    EXPECT_EQ(properties.users["the night shift"].functions, ",105,106,");
    EXPECT_EQ(properties.syslogSocket, "/dev/log");
}

TEST(BoardProperties, rejectDamage) {
    for (const std::string text : {"max_partitions=8\nuser=2 - x\n", "max_partitions=8\nuser=1-x\n",
                                   "max_partitions=8\nuser=1-- x\n", "max_partitions=8\nuser=1 -\n",
                                   "max_partitions=8\nuser=\n", "user=1 - admin\n"}) {
        Host::BoardProperties properties;
        EXPECT_FALSE(decode(Bytes(text.begin(), text.end()), properties)) << text;
        EXPECT_EQ(properties.maxPartitions, 0U);
        EXPECT_TRUE(properties.users.empty());
    }
}

TEST(BoardProperties, allowOnlyListedFunctions) {
    const Host::UserRights some = {.everyFunction = false, .functions = ",105,1061,"};
    EXPECT_TRUE(some.allow(105));
    EXPECT_FALSE(some.allow(106));
    EXPECT_FALSE(some.allow(10));
    EXPECT_TRUE((Host::UserRights{.everyFunction = true, .functions = ""}.allow(106)));
}

}  // namespace VeskLib::Test
