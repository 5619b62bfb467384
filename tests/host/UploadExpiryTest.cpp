#include "platform/host/session/Session.h"
#include "platform/host/session/abandonedUploads.h"
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
using Host::removeAbandonedUploads;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::time_t HOUR = 60 * 60;

class UploadExpiryTest : public BoardTest {
protected:
    static std::string at(const std::string& name) { return boardFile("/var/tmp/" + name); }

    static std::vector<std::string> names() { return namesIn(boardFile("/var/tmp")); }
};

}  // namespace

TEST_F(UploadExpiryTest, keepsUploadUntilItsProcessEnds) {
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
    setAge(path, 10 * HOUR);
    endExpiredSessions();
    EXPECT_TRUE(exists(path));
    process.kill();
    process.wait();
    endExpiredSessions();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(UploadExpiryTest, nextUploadRemovesAbandonedOne) {
    writeText(at("upload_0123456789abcdef"), "text");
    Host::UploadFile file;
    file.write("content");
    const std::string path = file.path();
    EXPECT_THAT(names(), ElementsAre(path.substr(path.rfind('/') + 1)));
    removeAbandonedUploads();
    EXPECT_TRUE(exists(path));
}

TEST_F(UploadExpiryTest, removesOnlyAbandonedUploads) {
    for (const char* name : {"upload_0123456789abcdef", "upload_x", "upload_", "upload",
                             "my_upload_0123456789abcdef", "Upload_x", "other"}) {
        writeText(at(name), "text");
    }
    endExpiredSessions();
    EXPECT_THAT(names(), ElementsAre("Upload_x", "my_upload_0123456789abcdef", "other", "upload"));
}

TEST_F(UploadExpiryTest, keepsUploadsElsewhere) {
    const std::string elsewhere = boardFile("/var/run/upload_x");
    writeText(elsewhere, "text");
    endExpiredSessions();
    EXPECT_TRUE(exists(elsewhere));
}

TEST_F(UploadExpiryTest, removesLinkButKeepsTarget) {
    const std::string elsewhere = boardFile("/var/run/precious");
    writeText(elsewhere, "precious");
    ASSERT_EQ(::symlink(elsewhere.c_str(), at("upload_link").c_str()), 0);
    endExpiredSessions();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(readText(elsewhere), "precious");
}

TEST_F(UploadExpiryTest, keepsFolder) {
    ASSERT_EQ(::mkdir(at("upload_folder").c_str(), 0700), 0);
    endExpiredSessions();
    EXPECT_THAT(names(), ElementsAre("upload_folder"));
}

}  // namespace VeskLib::Test
