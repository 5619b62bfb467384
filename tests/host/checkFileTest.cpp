#include "platform/host/storage/checkFile.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "tests/host/refusal.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

namespace VeskLib::Test {

using namespace Host;

namespace {

class CheckFileTest : public BoardTest {
protected:
    static std::string bytesOf(const std::string& version) {
        ConfigurationFile file;
        file.version = version;
        file.payload.assign(100000, 'x');
        const std::vector<unsigned char> bytes = encode(file);
        return {bytes.begin(), bytes.end()};
    }

    std::optional<SummedFile> sum(int access = O_RDONLY) const {
        const Descriptor file(::open(path.c_str(), access | O_CLOEXEC));
        return sumFile(file.get());
    }

    const std::string path = boardFile("/var/tmp/file");
};

TEST_F(CheckFileTest, returnsHeaderAndHash) {
    writeText(path, bytesOf("1.23 B"));
    const std::optional<SummedFile> summed = sum();
    ASSERT_TRUE(summed);
    EXPECT_EQ(summed->file.version, "1.23 B");
    EXPECT_TRUE(summed->file.payload.empty());
    EXPECT_EQ(summed->sha256, sha256Hex(bytesOf("1.23 B")));
}

TEST_F(CheckFileTest, readsUnchangedFileOnce) {
    writeText(path, bytesOf("1.23 B"));
    const std::string first = sum()->sha256;
    // A file opened for writing only cannot be read, so this result was remembered.
    EXPECT_EQ(sum(O_WRONLY)->sha256, first);
    writeText(boardFile("/var/tmp/other"), bytesOf("2.00"));
    std::filesystem::rename(boardFile("/var/tmp/other"), path);
    EXPECT_EQ(codeOf([&] { sum(O_WRONLY); }), FILE_NOT_READABLE);
}

TEST_F(CheckFileTest, rereadsFileChangedInPlace) {
    writeText(path, bytesOf("1.23 B"));
    struct stat before = {};
    ASSERT_EQ(::stat(path.c_str(), &before), 0);
    ASSERT_TRUE(sum());
    // The same length and modification time as before: only the change time differs.
    struct stat after = {};
    do {
        writeText(path, bytesOf("1.24 B"));
        const timespec times[2] = {before.st_atim, before.st_mtim};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        ASSERT_EQ(::stat(path.c_str(), &after), 0);
    } while (after.st_ctim.tv_sec == before.st_ctim.tv_sec &&
             after.st_ctim.tv_nsec == before.st_ctim.tv_nsec);
    EXPECT_EQ(sum()->file.version, "1.24 B");
}

TEST_F(CheckFileTest, remembersUnusableFile) {
    writeText(path, "x");
    EXPECT_FALSE(sum());
    EXPECT_FALSE(sum(O_WRONLY));
    writeText(path, bytesOf("1.23 B"));
    EXPECT_TRUE(sum());
}

TEST_F(CheckFileTest, checksWithoutHashing) {
    writeText(path, bytesOf("1.23 B"));
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(checkFile(file.get())->version, "1.23 B");
    const Descriptor unreadable(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(codeOf([&] { checkFile(unreadable.get()); }), FILE_NOT_READABLE);
}

}  // namespace

}  // namespace VeskLib::Test
