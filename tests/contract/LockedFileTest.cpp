#include <VeskLib/LockedFile.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"

#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <list>
#include <memory>
#include <stdexcept>

namespace VeskLib::Test {

class LockedFileTest : public testing::Test {
public:
    ~LockedFileTest() override { std::filesystem::remove_all(folder); }

protected:
    LockedFileTest() : folder(getCGIPath("/var/tmp/lock_test_") + std::to_string(::getpid())) {
        std::filesystem::create_directory(folder);
        path = folder + "/lock";
    }

    // Run in a child process: obtains the lock, prints "locked", and waits to be killed.
    static int holdForEver(const std::string& path) {
        const LockedFile lock(path);
        std::cout << "locked" << std::endl;
        for (;;) {
            ::pause();
        }
    }

    // Increments the number in `counter` `count` times, each under the lock; concurrent increments
    // would be lost.
    static int countUp(const std::string& path, const std::string& counter, int count) {
        for (int i = 0; i < count; ++i) {
            const LockedFile lock(path);
            const int value = std::stoi(readText(counter));
            ::usleep(500);
            writeText(counter, std::to_string(value + 1));
        }
        return 0;
    }

    void expectRefused(const std::string& refusedPath) {
        EXPECT_THROW(LockedFile lock(refusedPath), PException);
    }

    std::string folder;
    std::string path;
};

TEST_F(LockedFileTest, createsAndKeepsFile) {
    {
        const LockedFile lock(path);
        EXPECT_TRUE(exists(path));
    }
    EXPECT_TRUE(exists(path));
}

TEST_F(LockedFileTest, keepsContentOfFile) {
    writeText(path, "content");
    const LockedFile lock(path);
    EXPECT_EQ(readText(path), "content");
}

TEST_F(LockedFileTest, destructorReleasesLock) {
    for (int i = 0; i < 3; ++i) {
        const LockedFile lock(path);
    }
    EXPECT_EQ(runInChild([this] {
                  const LockedFile lock(path);
                  return 0;
              }).exitStatus,
              0);
}

TEST_F(LockedFileTest, exceptionReleasesLock) {
    const auto fail = [this] {
        const LockedFile lock(path);
        throw std::runtime_error("failed");
    };
    EXPECT_THROW(fail(), std::runtime_error);
    const LockedFile lock(path);
}

TEST_F(LockedFileTest, excludesOtherProcesses) {
    const std::string counter = folder + "/counter";
    writeText(counter, "0");
    std::list<ChildProcess> children;
    for (int i = 0; i < 4; ++i) {
        children.emplace_back([this, counter] { return countUp(path, counter, 25); });
    }
    for (ChildProcess& child : children) {
        const ChildResult result = child.wait();
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
    }
    EXPECT_EQ(readText(counter), "100");
}

TEST_F(LockedFileTest, throwsWhileAnotherProcessHoldsLock) {
    ChildProcess holder([this] { return holdForEver(path); });
    ASSERT_EQ(holder.readLine(), "locked");
    expectRefused(path);
    EXPECT_TRUE(exists(path));
}

TEST_F(LockedFileTest, killingHolderReleasesLock) {
    ChildProcess holder([this] { return holdForEver(path); });
    ASSERT_EQ(holder.readLine(), "locked");
    holder.kill();
    EXPECT_EQ(holder.wait().signal, SIGKILL);
    const LockedFile lock(path);
}

TEST_F(LockedFileTest, startedProgramDoesNotInheritLock) {
    auto lock = std::make_unique<LockedFile>(path);
    ChildProcess program(
        [] { return ::execl("/bin/sh", "sh", "-c", "echo on; sleep 60", nullptr); });
    ASSERT_EQ(program.readLine(), "on");
    lock.reset();
    const LockedFile again(path);
}

TEST_F(LockedFileTest, rejectsLinkWithoutFollowingIt) {
    const std::string target = folder + "/target";
    ASSERT_EQ(::symlink(target.c_str(), path.c_str()), 0);
    expectRefused(path);
    EXPECT_FALSE(exists(target));
    writeText(target, "content");
    expectRefused(path);
}

TEST_F(LockedFileTest, rejectsPipeWithoutBlocking) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    expectRefused(path);
}

TEST_F(LockedFileTest, rejectsFolder) {
    expectRefused(folder);
}

TEST_F(LockedFileTest, rejectsPathInMissingFolder) {
    expectRefused(folder + "/missing/lock");
}

}  // namespace VeskLib::Test
