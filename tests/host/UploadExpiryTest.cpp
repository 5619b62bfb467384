#include "platform/host/web/Session.h"
#include "platform/host/web/UploadFile.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <iostream>

namespace VeskLib::Test {

using Host::endExpiredSessions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::time_t HOUR = 60 * 60;

// Far more than a test takes between setting a time and asking.
const std::time_t MARGIN = 30;

class UploadExpiryTest : public BoardTest {
protected:
    static std::string at(const std::string& name) { return boardFile("/var/tmp/" + name); }

    static std::vector<std::string> names() { return namesIn(boardFile("/var/tmp")); }

    static void writeOld(const std::string& name, std::time_t age) {
        writeText(at(name), "text");
        setAge(at(name), age);
    }
};

}  // namespace

TEST_F(UploadExpiryTest, whatAKilledProcessLeftIsRemovedAfterAnHour) {
    ChildProcess process([] {
        Host::UploadFile file;
        file.write("content");
        std::cout << file.path() << std::endl;
        for (;;) {
            ::pause();
        }
        return 0;
    });
    const std::string path = process.readLine();
    process.kill();
    process.wait();
    ASSERT_THAT(names(), SizeIs(1));
    endExpiredSessions();
    EXPECT_TRUE(exists(path));
    setAge(path, HOUR - MARGIN);
    endExpiredSessions();
    EXPECT_TRUE(exists(path));
    setAge(path, HOUR + 1);
    endExpiredSessions();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(UploadExpiryTest, everyOldUploadIsRemovedAndNothingElse) {
    for (const char* name : {"upload_0123456789abcdef", "upload_x", "upload_", "upload",
                             "my_upload_0123456789abcdef", "Upload_x", "other"}) {
        writeOld(name, 10 * HOUR);
    }
    writeOld("upload_young", 0);
    writeOld("upload_from_the_future", -HOUR);
    endExpiredSessions();
    EXPECT_THAT(names(), ElementsAre("Upload_x", "my_upload_0123456789abcdef", "other", "upload",
                                     "upload_from_the_future", "upload_young"));
}

TEST_F(UploadExpiryTest, uploadsElsewhereStay) {
    const std::string elsewhere = boardFile("/var/run/upload_x");
    writeText(elsewhere, "text");
    setAge(elsewhere, 2 * HOUR);
    endExpiredSessions();
    EXPECT_TRUE(exists(elsewhere));
}

TEST_F(UploadExpiryTest, aLinkIsRemovedAndNotFollowed) {
    const std::string elsewhere = boardFile("/var/run/precious");
    writeText(elsewhere, "precious");
    setAge(elsewhere, 2 * HOUR);
    ASSERT_EQ(::symlink(elsewhere.c_str(), at("upload_new").c_str()), 0);
    ASSERT_EQ(::symlink(elsewhere.c_str(), at("upload_old").c_str()), 0);
    setAge(at("upload_old"), 2 * HOUR);
    endExpiredSessions();
    EXPECT_THAT(names(), ElementsAre("upload_new"));
    EXPECT_EQ(readText(elsewhere), "precious");
}

TEST_F(UploadExpiryTest, aFolderStays) {
    ASSERT_EQ(::mkdir(at("upload_folder").c_str(), 0700), 0);
    setAge(at("upload_folder"), 2 * HOUR);
    endExpiredSessions();
    EXPECT_THAT(names(), ElementsAre("upload_folder"));
}

}  // namespace VeskLib::Test
