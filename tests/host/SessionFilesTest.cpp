#include "platform/host/session/Session.h"

#include "platform/host/base/platformException.h"
#include "tests/host/refusal.h"
#include "tests/host/sessionFiles.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedLimit.h"
#include "tests/support/files.h"
#include "tests/support/happensInTime.h"
#include "tests/support/sanitizers.h"

#include <VeskLib/LockedFile.h>

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <iostream>

namespace VeskLib::Test {

using Host::endExpiredSessions;
using Host::endSession;
using Host::Session;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string ORPHAN = "00000000000000ff";

}  // namespace

// Tests of the files of sessions that end.
class SessionFilesTest : public BoardTest {
protected:
    // A session with a backup and an upload.
    static Session startWithFiles() {
        Session session = Host::startSession("operator");
        writeText(backupFile(session.identifier), "backup");
        writeText(stagingFile(session.identifier), "upload");
        return session;
    }

    static bool hasEverything(const Session& session) {
        return exists(sessionFile(session.identifier)) && exists(backupFile(session.identifier)) &&
               exists(stagingFile(session.identifier));
    }

    static bool hasNothing(const std::string& identifier) {
        return !exists(sessionFile(identifier)) && !exists(backupFile(identifier)) &&
               !exists(stagingFile(identifier));
    }
};

TEST_F(SessionFilesTest, endRemovesOnlyFilesOfSession) {
    const Session ended = startWithFiles();
    const Session other = startWithFiles();
    endSession(ended.identifier);
    EXPECT_TRUE(hasNothing(ended.identifier));
    EXPECT_TRUE(hasEverything(other));
    EXPECT_FALSE(isLetIn(ended.cookieValue()));
    EXPECT_TRUE(isLetIn(other.cookieValue()));
}

TEST_F(SessionFilesTest, expiryRemovesFiles) {
    const Session expired = startWithFiles();
    const Session other = startWithFiles();
    setAge(sessionFile(expired.identifier), Host::SESSION_IDLE_SECONDS + 1);
    EXPECT_FALSE(isLetIn(expired.cookieValue()));
    EXPECT_TRUE(hasNothing(expired.identifier));
    EXPECT_TRUE(hasEverything(other));
}

TEST_F(SessionFilesTest, endsExpiredSessionIfAuditLogFails) {
    const Session expired = startWithFiles();
    setAge(sessionFile(expired.identifier), Host::SESSION_IDLE_SECONDS + 1);
    ASSERT_EQ(::mkfifo(boardFile("/var/log/audit.log").c_str(), 0600), 0);
    EXPECT_NO_THROW(endExpiredSessions());
    EXPECT_TRUE(hasNothing(expired.identifier));
    EXPECT_THAT(readText(boardFile("/var/log/trace.log")),
                testing::HasSubstr("The end of a session cannot be written to the audit log"));
}

TEST_F(SessionFilesTest, ignoresInvalidIdentifier) {
    const Session session = startWithFiles();
    writeText(boardFile("/var/tmp/efi_backup"), "not a session's");
    writeText(boardFile("/var/precious"), "not a session's");
    for (const std::string& identifier :
         {std::string(), std::string("."), std::string("../../precious"), session.cookieValue(),
          session.identifier.substr(1), session.identifier + "/"}) {
        endSession(identifier);
    }
    EXPECT_TRUE(hasEverything(session));
    EXPECT_TRUE(exists(boardFile("/var/tmp/efi_backup")));
    EXPECT_TRUE(exists(boardFile("/var/precious")));
}

TEST_F(SessionFilesTest, endsSessionTwiceOrWithoutFiles) {
    const Session session = Host::startSession("operator");
    endSession(session.identifier);
    endSession(session.identifier);
    EXPECT_THAT(namesIn(boardFile("/var/lib/session")), IsEmpty());
    EXPECT_THAT(namesIn(boardFile("/var/tmp")), IsEmpty());
}

TEST_F(SessionFilesTest, removesUploadUnderStagingLock) {
    const Session session = startWithFiles();
    ChildProcess holder([] {
        const LockedFile lock(boardFile("/var/tmp/restored_eficonf.lock"));
        std::cout << "locked" << std::endl;
        for (;;) {
            ::pause();
        }
        return 0;
    });
    ASSERT_EQ(holder.readLine(), "locked");
    ChildProcess ending([&session] {
        std::cout << "ending" << std::endl;
        endSession(session.identifier);
        return 0;
    });
    ASSERT_EQ(ending.readLine(), "ending");
    EXPECT_TRUE(happensInTime([&session] { return !exists(backupFile(session.identifier)); }));
    ::usleep(20000);  // enough for a removal that does not wait for the lock
    EXPECT_TRUE(exists(stagingFile(session.identifier)));
    holder.kill();
    EXPECT_EQ(ending.wait().exitStatus, 0);
    EXPECT_FALSE(exists(stagingFile(session.identifier)));
}

TEST_F(SessionFilesTest, endsSessionWithoutStagingLock) {
    const Session session = startWithFiles();
    const std::string lockPath = boardFile("/var/tmp/restored_eficonf.lock");
    ASSERT_EQ(::symlink("/nowhere", lockPath.c_str()), 0);
    EXPECT_NO_THROW(endSession(session.identifier));
    EXPECT_FALSE(exists(sessionFile(session.identifier)));
    EXPECT_FALSE(exists(backupFile(session.identifier)));
    EXPECT_TRUE(exists(stagingFile(session.identifier)));
    // The upload is an orphan now. It is removed once the lock can be taken again.
    ASSERT_EQ(::unlink(lockPath.c_str()), 0);
    endExpiredSessions();
    EXPECT_TRUE(hasNothing(session.identifier));
}

// A limit on open files makes every file unreadable for a while.
TEST_F(SessionFilesTest, keepsUnreadableSession) {
    if (SANITIZED) {
        GTEST_SKIP() << "the sanitizers need descriptors";
    }
    const Session session = startWithFiles();
    ChildProcess process([&session] {
        const ScopedLimit none(RLIMIT_NOFILE, 0);
        endExpiredSessions();
        Session found;
        std::cout << codeOf([&] { Host::findSession(session.cookieValue(), found); }) << ' '
                  << codeOf([&] { Host::findSessionByIdentifier(session.identifier, found); });
        return 0;
    });
    const std::string notReadable = std::to_string(Host::SESSION_NOT_READABLE);
    EXPECT_EQ(process.wait().output, notReadable + " " + notReadable);
    EXPECT_TRUE(hasEverything(session));
    EXPECT_TRUE(isLetIn(session.cookieValue()));
}

TEST_F(SessionFilesTest, reportsFailureToEndSession) {
    const Session session = startWithFiles();
    const std::string path = sessionFile(session.identifier);
    ASSERT_EQ(::unlink(path.c_str()), 0);
    EXPECT_TRUE(endSession(session.identifier));
    // A folder that is not empty cannot be removed.
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    writeText(path + "/file", "");
    EXPECT_FALSE(endSession(session.identifier));
    ASSERT_EQ(::unlink((path + "/file").c_str()), 0);
    EXPECT_TRUE(endSession(session.identifier));
}

TEST_F(SessionFilesTest, endsAllExpiredSessions) {
    const Session idle = startWithFiles();
    const Session old = startWithFiles();
    const Session living = startWithFiles();
    setField(old, "created", std::to_string(old.created - Host::SESSION_LIFE_SECONDS - 1));
    setAge(sessionFile(idle.identifier), Host::SESSION_IDLE_SECONDS + 1);
    endExpiredSessions();
    EXPECT_TRUE(hasNothing(idle.identifier));
    EXPECT_TRUE(hasNothing(old.identifier));
    EXPECT_TRUE(hasEverything(living));
    EXPECT_TRUE(isLetIn(living.cookieValue()));
}

TEST_F(SessionFilesTest, doesNotCountExpiryCheckAsUse) {
    const Session session = startWithFiles();
    setAge(sessionFile(session.identifier), Host::SESSION_IDLE_SECONDS - 60);
    endExpiredSessions();
    setAge(sessionFile(session.identifier), Host::SESSION_IDLE_SECONDS + 1);
    EXPECT_FALSE(isLetIn(session.cookieValue()));
}

TEST_F(SessionFilesTest, removesFilesWithoutSession) {
    writeText(backupFile(ORPHAN), "backup");
    writeText(stagingFile(ORPHAN), "upload");
    writeText(stagingFile("ff00000000000000"), "upload");
    endExpiredSessions();
    EXPECT_THAT(namesIn(boardFile("/var/tmp")), ElementsAre("restored_eficonf.lock"));
}

TEST_F(SessionFilesTest, keepsUnrelatedFiles) {
    const std::vector<std::string> names = {
        "efi_backup",
        "efi_backup0123456789ABCDEF",
        "efi_backup0123456789abcde",
        "efi_backup0123456789abcdef0",
        "efi_backup_0123456789abcdef",
        "my_efi_backup0123456789abcdef",
        "other",
        "restored_eficonf.lock",
        "restored_eficonf0123456789abcdef.dat",
    };
    for (const std::string& name : names) {
        writeText(boardFile("/var/tmp/" + name), "text");
    }
    endExpiredSessions();
    EXPECT_EQ(namesIn(boardFile("/var/tmp")), names);
}

TEST_F(SessionFilesTest, keepsUnrelatedFilesInSessionFolder) {
    writeText(boardFile("/var/lib/session/README"), "text");
    writeText(boardFile("/var/lib/session/0123456789ABCDEF"), "text");
    endExpiredSessions();
    EXPECT_THAT(namesIn(boardFile("/var/lib/session")), ElementsAre("0123456789ABCDEF", "README"));
}

TEST_F(SessionFilesTest, removesDamagedSessionWithoutFollowingLinks) {
    writeText(sessionFile(ORPHAN), "damaged");
    const std::string elsewhere = boardFile("/var/precious");
    writeText(elsewhere, "precious");
    ASSERT_EQ(::symlink(elsewhere.c_str(), sessionFile("ff00000000000000").c_str()), 0);
    ASSERT_EQ(::symlink(elsewhere.c_str(), backupFile("ff00000000000001").c_str()), 0);
    ASSERT_EQ(::symlink(elsewhere.c_str(), stagingFile("ff00000000000002").c_str()), 0);
    endExpiredSessions();
    EXPECT_THAT(namesIn(boardFile("/var/lib/session")), IsEmpty());
    EXPECT_THAT(namesIn(boardFile("/var/tmp")), ElementsAre("restored_eficonf.lock"));
    EXPECT_EQ(readText(elsewhere), "precious");
}

TEST_F(SessionFilesTest, removesDanglingLinks) {
    ASSERT_EQ(::symlink("/nowhere", stagingFile(ORPHAN).c_str()), 0);
    ASSERT_EQ(::symlink("/nowhere", backupFile(ORPHAN).c_str()), 0);
    endExpiredSessions();
    EXPECT_TRUE(hasNothing(ORPHAN));
}

TEST_F(SessionFilesTest, acceptsMissingFolders) {
    const ChildResult result = runInChild(
        [] {
            endExpiredSessions();
            return 0;
        },
        {.environment = {{"BOARD_ROOT", "/nonexistent"}}, .input = {}});
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
}

}  // namespace VeskLib::Test
