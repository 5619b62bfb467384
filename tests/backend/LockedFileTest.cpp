#include <VeskLib/LockedFile.h>
#include <VeskLib/PException.h>

#include "platform/host/base/platformException.h"
#include "platform/host/storage/obtainLock.h"
#include "tests/backend/support/RootTest.h"
#include "tests/backend/support/requests.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

namespace VeskLib::Test {

namespace {

// Returns the detail code of the exception, or 0 if the lock is obtained.
int refusal(const std::string& path, int milliseconds = 0) {
    try {
        ::close(Host::obtainLock(path, milliseconds));
        return 0;
    } catch (const PException& failure) {
        return failure.getExceptionDetail();
    }
}

class LockedFileTest : public RootTest {
protected:
    const std::string path = at("lock");
};

}  // namespace

TEST_F(LockedFileTest, locksDuringItsLifetimeAndKeepsFile) {
    {
        const LockedFile lock(path);
        EXPECT_EQ(refusal(path), Host::LOCK_NOT_OBTAINED);
    }
    EXPECT_EQ(refusal(path), 0);
    struct stat status = {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
}

TEST_F(LockedFileTest, waitsUntilHolderReleases) {
    auto held = std::make_unique<LockedFile>(path);
    std::thread holder([&held] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        held.reset();
    });
    EXPECT_EQ(refusal(path, LONG), 0);
    holder.join();
}

TEST_F(LockedFileTest, waitHasTimeout) {
    const LockedFile lock(path);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(refusal(path, 60), Host::LOCK_NOT_OBTAINED);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
}

// Only this test waits for the real timeout.
TEST_F(LockedFileTest, throwsWhenLockIsNotReleasedInTime) {
    const LockedFile lock(path);
    const auto start = std::chrono::steady_clock::now();
    try {
        const LockedFile second(path);
        FAIL() << "two holders";
    } catch (const PException& failure) {
        EXPECT_EQ(failure.getExceptionDetail(), Host::LOCK_NOT_OBTAINED);
    }
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST_F(LockedFileTest, deathOfHolderReleasesLock) {
    const pid_t holder = ::fork();
    if (holder == 0) {
        Host::obtainLock(path, 0);
        ::_exit(0);
    }
    ASSERT_EQ(::waitpid(holder, nullptr, 0), holder);
    EXPECT_EQ(refusal(path), 0);
}

TEST_F(LockedFileTest, refusesLink) {
    ASSERT_EQ(::symlink("target", path.c_str()), 0);
    EXPECT_EQ(refusal(path), Host::LOCK_NOT_USABLE);
    EXPECT_EQ(names(), std::vector<std::string>{"lock"});

    writeText(at("target"), "");
    EXPECT_EQ(refusal(path), Host::LOCK_NOT_USABLE);
}

TEST_F(LockedFileTest, refusesPipeAndFolder) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(refusal(path), Host::LOCK_NOT_USABLE);
    EXPECT_EQ(refusal(at("")), Host::LOCK_NOT_USABLE);
}

TEST_F(LockedFileTest, refusesMissingFolder) {
    EXPECT_EQ(refusal(at("missing/lock")), Host::LOCK_NOT_USABLE);
    EXPECT_THROW(const LockedFile lock(at("missing/lock")), PException);
}

TEST_F(LockedFileTest, refusesFileOfAnotherUser) {
    writeText(path, "");
    if (::chown(path.c_str(), 65534, 65534) != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    EXPECT_EQ(refusal(path), Host::LOCK_NOT_USABLE);
}

}  // namespace VeskLib::Test
