#include "platform/host/storage/files.h"

#include "platform/host/base/Descriptor.h"
#include "tests/backend/support/RootTest.h"
#include "tests/support/ScopedLimit.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <new>

namespace VeskLib::Test {

using namespace Host;

namespace {

const std::size_t LIMIT = 1000;

class Files : public RootTest {
protected:
    // Returns the errno with which reading `path` fails, or 0. Checks that a failure leaves the
    // output unchanged.
    static int readError(const std::string& path, std::size_t limit = LIMIT) {
        Bytes bytes = {1, 2, 3};
        errno = 0;
        if (readFile(path, limit, bytes)) {
            return 0;
        }
        const int reason = errno;
        EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
        return reason;
    }

    static unsigned int modeOf(const std::string& path) {
        struct stat status = {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0);
        return status.st_mode;
    }
};

}  // namespace

TEST_F(Files, readsWholeRegularFile) {
    const std::string path = at("file");
    writeText(path, std::string("a\0b\n", 4));
    Bytes bytes = {9, 9};
    ASSERT_TRUE(readFile(path, 4, bytes));
    EXPECT_EQ(bytes, (Bytes{'a', 0, 'b', '\n'}));
}

TEST_F(Files, readsEmptyFile) {
    writeText(at("file"), "");
    Bytes bytes = {9, 9};
    ASSERT_TRUE(readFile(at("file"), 0, bytes));
    EXPECT_TRUE(bytes.empty());
}

TEST_F(Files, refusesFileAboveLimit) {
    writeText(at("file"), "12345");
    EXPECT_EQ(readError(at("file"), 5), 0);
    EXPECT_EQ(readError(at("file"), 4), EFBIG);
}

TEST_F(Files, refusesFileAboveFourGiB) {
    writeText(at("file"), "");
    ASSERT_EQ(::truncate(at("file").c_str(), (1LL << 32) + 3), 0);
    EXPECT_EQ(readError(at("file"), 4), EFBIG);
}

TEST_F(Files, refusesToReadNonRegularFile) {
    writeText(at("file"), "secret");
    ASSERT_EQ(::symlink("file", at("link").c_str()), 0);
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(readError(at("missing")), ENOENT);
    EXPECT_EQ(readError(at("link")), ELOOP);
    EXPECT_EQ(readError(at("pipe")), EINVAL);
    EXPECT_EQ(readError(at("")), EINVAL);
    EXPECT_EQ(readError("/dev/zero"), EINVAL);
}

TEST_F(Files, propagatesExceptionOfCallback) {
    writeText(at("file"), std::string(LIMIT, 'x'));
    const Descriptor file(openForReading(at("file")));
    EXPECT_THROW(readPieces(file.get(), LIMIT,
                            [](const unsigned char*, std::size_t) { throw std::bad_alloc(); }),
                 std::bad_alloc);
}

TEST_F(Files, replacesFileWithoutLeftovers) {
    const std::string path = at("file");
    ASSERT_TRUE(replaceFile(path, {'o', 'n', 'e'}, 0600));
    EXPECT_EQ(readText(path), "one");
    ASSERT_TRUE(replaceFile(path, {'t', 'w', 'o', '!'}, 0600));
    EXPECT_EQ(readText(path), "two!");
    ASSERT_TRUE(replaceFile(path, {}, 0600));
    EXPECT_EQ(readText(path), "");
    EXPECT_EQ(names(), std::vector<std::string>{"file"});
}

TEST_F(Files, replacementHasExactMode) {
    const mode_t original = ::umask(0077);
    EXPECT_TRUE(replaceFile(at("public"), {'x'}, 0644));
    ::umask(0);
    EXPECT_TRUE(replaceFile(at("private"), {'x'}, 0600));
    ::umask(original);
    EXPECT_EQ(modeOf(at("public")), S_IFREG | 0644U);
    EXPECT_EQ(modeOf(at("private")), S_IFREG | 0600U);
}

TEST_F(Files, replacesLinkNotItsTarget) {
    writeText(at("target"), "untouched");
    ASSERT_EQ(::symlink("target", at("file").c_str()), 0);
    ASSERT_TRUE(replaceFile(at("file"), {'n', 'e', 'w'}, 0600));
    EXPECT_EQ(modeOf(at("file")), S_IFREG | 0600U);
    EXPECT_EQ(readText(at("target")), "untouched");
}

TEST_F(Files, replacesFileInWorkingFolder) {
    const std::string path = at("file");
    const std::filesystem::path original = std::filesystem::current_path();
    std::filesystem::current_path(at(""));
    EXPECT_TRUE(replaceFile("file", {'x'}, 0600));
    std::filesystem::current_path(original);
    EXPECT_EQ(readText(path), "x");
}

TEST_F(Files, failedReplacementChangesNothing) {
    errno = 0;
    EXPECT_FALSE(replaceFile(at("missing/file"), {'x'}, 0600));
    EXPECT_EQ(errno, ENOENT);

    ASSERT_EQ(::mkdir(at("in the way").c_str(), 0700), 0);
    errno = 0;
    EXPECT_FALSE(replaceFile(at("in the way"), {'x'}, 0600));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(names(), std::vector<std::string>{"in the way"});
}

TEST_F(Files, keepsOldFileWhenDiskIsFull) {
    const std::string path = at("file");
    writeText(path, "old");
    errno = 0;
    {
        const ScopedFileSizeLimit limit(4096);
        EXPECT_FALSE(replaceFile(path, Bytes(100000, 'x'), 0600));
    }
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(readText(path), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"file"});
}

TEST_F(Files, createsFileOnlyIfAbsent) {
    EXPECT_TRUE(createFile(at("file"), {'o', 'n', 'e'}, 0640));
    EXPECT_EQ(modeOf(at("file")) & 07777U, 0640U);
    EXPECT_FALSE(createFile(at("file"), {'t', 'w', 'o'}, 0640));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(readText(at("file")), "one");
    EXPECT_FALSE(createFile(at("missing/file"), {'x'}, 0600));
}

TEST_F(Files, removesOnlyLeftoversOfReplacement) {
    for (const char* name :
         {"file", "file.aside-Ab12Yz", "filebcd.aside-Ab12Yz", "other.aside-Ab12Yz",
          "file.aside-Ab12Y", "file.aside-Ab12Yzz", "file.notes"}) {
        writeText(at(name), "x");
    }
    removeFilesAside(at("file"));
    EXPECT_EQ(names(), (std::vector<std::string>{"file", "file.aside-Ab12Y", "file.aside-Ab12Yzz",
                                                 "file.notes", "other.aside-Ab12Yz"}));
    removeFilesAside(at("missing/file"));
}

}  // namespace VeskLib::Test
