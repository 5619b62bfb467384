#include "platform/host/web/sessionFiles.h"

#include "platform/host/base/platformException.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/web/UploadFile.h"
#include "platform/host/web/refusedPage.h"
#include "platform/host/web/requestAudit.h"
#include "platform/host/web/requestSession.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/sessions.h"

#include <VeskLib/PException.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace VeskLib::Test {

using Host::Session;
using JSON = nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Tests of the checks around a request that may change a session's files.
class RequestFilesTest : public BoardTest {
protected:
    RequestFilesTest()
        : session(startSession("user", false, ",105,106,")),
          backup(backupFile(session.identifier)),
          staged(stagingFile(session.identifier)) {}

    // Runs a request that does `work`. Returns 0, or statusOf() of the code that refuses it.
    int request(const std::function<void()>& work, const char* method = "POST") const {
        const ChildResult result = runInChild(
            [&] {
                Host::findRequestSession(session.cookieValue());
                try {
                    Host::checkSessionFiles();
                    work();
                    Host::settleRequest();
                } catch (const PException& exception) {
                    return statusOf(exception.getExceptionDetail());
                }
                return 0;
            },
            {.environment = {{"REQUEST_METHOD", method}, {"REMOTE_ADDR", "192.0.2.1"}},
             .input = {}});
        EXPECT_GE(result.exitStatus, 0) << result.errors;
        return result.exitStatus;
    }

    // Returns an error code of the platform as an exit status.
    static int statusOf(int code) { return code - 1000; }

    // Stages an upload as the program does.
    void upload(const std::string& bytes) const {
        Host::UploadFile file;
        file.write(bytes);
        std::filesystem::rename(file.path(), staged);
    }

    static std::string configuration() {
        Host::ConfigurationFile file;
        file.partition = 3;
        file.version = "1.23 B";
        file.payload = {'x'};
        const std::vector<unsigned char> bytes = encode(file);
        return {bytes.begin(), bytes.end()};
    }

    static std::vector<JSON> events() {
        std::vector<JSON> all;
        const std::string path = boardFile("/var/log/audit.log");
        for (const std::string& line :
             exists(path) ? linesOf(readText(path)) : std::vector<std::string>()) {
            all.push_back(JSON::parse(line));
        }
        return all;
    }

    static void breakAuditLog() {
        ASSERT_EQ(::mkfifo(boardFile("/var/log/audit.log").c_str(), 0600), 0);
    }

    const Session session;
    const std::string backup;
    const std::string staged;
};

}  // namespace

TEST_F(RequestFilesTest, acceptsOwnFiles) {
    EXPECT_EQ(request([] {}), 0);
    writeText(backup, "backup");
    writeText(staged, "staged");
    EXPECT_EQ(request([] {}), 0);
    EXPECT_EQ(readText(backup) + readText(staged), "backupstaged");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RequestFilesTest, rejectsForeignFilesBeforeWork) {
    const std::string precious = boardFile("/var/precious");
    writeText(precious, "precious");
    for (const std::string& path : {backup, staged}) {
        const std::vector<std::function<int()>> kinds = {
            [&] { return ::symlink(precious.c_str(), path.c_str()); },
            [&] { return ::symlink("/nowhere", path.c_str()); },
            [&] { return ::link(precious.c_str(), path.c_str()); },
            [&] { return ::mkfifo(path.c_str(), 0600); },
            [&] { return ::mkdir(path.c_str(), 0700); },
        };
        for (const auto& make : kinds) {
            ASSERT_EQ(make(), 0);
            EXPECT_EQ(request([&precious] { writeText(precious, "worked"); }),
                      statusOf(Host::SESSION_FILE_REFUSED));
            std::filesystem::remove(path);
        }
        if (::geteuid() == 0) {
            writeText(path, "another's");
            ASSERT_EQ(::chown(path.c_str(), 12345, 12345), 0);
            EXPECT_EQ(request([&precious] { writeText(precious, "worked"); }),
                      statusOf(Host::SESSION_FILE_REFUSED));
            std::filesystem::remove(path);
        }
        EXPECT_THAT(readText(boardFile("/var/log/trace.log")), HasSubstr(path.substr(0, 100)));
    }
    EXPECT_EQ(readText(precious), "precious");
}

TEST_F(RequestFilesTest, recordsUploadWithFileDetails) {
    ASSERT_EQ(request([this] { upload(configuration()); }), 0);
    ASSERT_EQ(events().size(), 1U);
    const JSON event = events()[0];
    EXPECT_EQ(event["event"], "upload");
    EXPECT_EQ(event["result"], "done");
    EXPECT_EQ(event["user"], "user");
    EXPECT_EQ(event["session"], session.identifier);
    EXPECT_EQ(event["address"], "192.0.2.1");
    EXPECT_EQ(event["file"]["partition"], 3);
    // Uploading the same bytes again is another upload.
    ASSERT_EQ(request([this] { upload(configuration()); }), 0);
    EXPECT_EQ(events().size(), 2U);
}

TEST_F(RequestFilesTest, recordsUnstagedUploadAsRefused) {
    writeText(staged, "staged");
    const auto refuse = [] {
        Host::UploadFile file;
        file.write("no configuration");
        static_cast<void>(file.path());
    };
    ASSERT_EQ(request(refuse), 0);
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0]["event"], "upload");
    EXPECT_EQ(events()[0]["result"], "refused");
    EXPECT_FALSE(events()[0].contains("file"));
    EXPECT_EQ(readText(staged), "staged");
}

TEST_F(RequestFilesTest, recordsDiscard) {
    writeText(staged, "staged");
    ASSERT_EQ(request([this] { std::filesystem::remove(staged); }), 0);
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0]["event"], "discard");
    EXPECT_EQ(events()[0]["result"], "done");
}

TEST_F(RequestFilesTest, removesUploadThatCannotBeRecorded) {
    breakAuditLog();
    EXPECT_EQ(request([this] { upload(configuration()); }), statusOf(Host::AUDIT_NOT_WRITTEN));
    EXPECT_FALSE(exists(staged));
}

TEST_F(RequestFilesTest, failsIfDiscardCannotBeRecorded) {
    writeText(staged, "staged");
    breakAuditLog();
    EXPECT_EQ(request([this] { std::filesystem::remove(staged); }),
              statusOf(Host::AUDIT_NOT_WRITTEN));
}

TEST_F(RequestFilesTest, removesFilesOfRefusedUser) {
    struct Case {
        const char* functions;
        bool backupStays;
        bool stagedStays;
    };
    for (const Case& each : {Case{",105,106,", true, true}, Case{",105,", true, false},
                             Case{",106,", false, true}, Case{"", false, false}}) {
        publishUser("user", false, each.functions);
        writeText(backup, "backup");
        writeText(staged, "staged");
        const std::size_t before = events().size();
        ASSERT_EQ(request([] { Host::noteRefusedPage(); }), 0);
        EXPECT_EQ(exists(backup), each.backupStays) << each.functions;
        EXPECT_EQ(exists(staged), each.stagedStays) << each.functions;
        ASSERT_EQ(events().size(), before + 1);
        EXPECT_EQ(events().back()["event"], "refusal");
        EXPECT_EQ(events().back()["reason"], "rights");
    }
}

TEST_F(RequestFilesTest, removesFilesOfEndedSession) {
    const auto work = [this] {
        Host::endSession(session.identifier);
        writeText(backup, "backup");
        upload(configuration());
    };
    ASSERT_EQ(request(work), 0);
    EXPECT_FALSE(exists(backup));
    EXPECT_FALSE(exists(staged));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RequestFilesTest, recordsOnlyRefusalForGet) {
    writeText(backup, "backup");
    publishUser("user", false, "");
    ASSERT_EQ(request([] { Host::noteRefusedPage(); }, "GET"), 0);
    EXPECT_TRUE(exists(backup));
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0]["reason"], "rights");
}

}  // namespace VeskLib::Test
