#include "platform/host/web/UploadFile.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"
#include "tests/support/BoardTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedLimit.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <limits>

namespace VeskLib::Test {

using Host::UploadFile;
using Host::FormLimits::FILE_LENGTH;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

class UploadFileTest : public BoardTest {
protected:
    static std::vector<std::string> names() { return namesIn(boardFile("/var/tmp")); }

    // Returns the sizes of the unnamed files under /var/tmp that this process has open.
    static std::vector<std::size_t> unnamedSizes() {
        std::vector<std::size_t> sizes;
        const std::string start = boardFile("/var/tmp/#");
        for (const std::string& number : namesIn("/proc/self/fd")) {
            const std::string link = "/proc/self/fd/" + number;
            struct stat status = {};
            std::error_code gone;
            if (std::filesystem::read_symlink(link, gone).string().starts_with(start) &&
                ::stat(link.c_str(), &status) == 0) {
                sizes.push_back(static_cast<std::size_t>(status.st_size));
            }
        }
        return sizes;
    }

    // Returns path(), or the code of the exception that it throws.
    static std::string pathOf(UploadFile& file) {
        try {
            return file.path();
        } catch (const PException& exception) {
            return std::to_string(exception.getExceptionDetail());
        }
    }
};

const std::string NOT_STORED = std::to_string(Host::UPLOAD_NOT_STORED);

}  // namespace

TEST_F(UploadFileTest, hasNoNameUntilRequested) {
    UploadFile file;
    file.write("one ");
    file.write("two");
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(unnamedSizes(), ElementsAre(7));
    EXPECT_EQ(file.size(), 7U);
    const std::string path = file.path();
    EXPECT_THAT(names(), ElementsAre(MatchesRegex("upload_[0-9a-f]{16}")));
    EXPECT_EQ(path, boardFile("/var/tmp/" + names().at(0)));
    EXPECT_EQ(readText(path), "one two");
    EXPECT_EQ(file.path(), path);
    EXPECT_THAT(names(), testing::SizeIs(1));
}

TEST_F(UploadFileTest, givesEachUploadUniqueName) {
    UploadFile one;
    UploadFile other;
    one.write("1");
    other.write("2");
    EXPECT_NE(one.path(), other.path());
    EXPECT_EQ(readText(one.path()) + readText(other.path()), "12");
}

TEST_F(UploadFileTest, isReadableByOwnerOnly) {
    for (const mode_t mask : {mode_t{0}, mode_t{022}}) {
        UploadFile file;
        const mode_t former = ::umask(mask);
        file.write("secret");
        ::umask(former);
        struct stat status = {};
        ASSERT_EQ(::stat(file.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    }
}

TEST_F(UploadFileTest, countsBytesBeyondLimitWithoutStoring) {
    UploadFile file;
    file.write(std::string(FILE_LENGTH - 10, 'a'));
    file.write(std::string(30, 'b'));
    file.write(std::string(1000, 'c'));
    EXPECT_EQ(file.size(), FILE_LENGTH + 1020);
    EXPECT_THAT(unnamedSizes(), ElementsAre(FILE_LENGTH));
    EXPECT_EQ(file.path(), "");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(UploadFileTest, storesFileUpToLimit) {
    UploadFile whole;
    whole.write(std::string(FILE_LENGTH, 'a'));
    EXPECT_EQ(whole.size(), FILE_LENGTH);
    EXPECT_TRUE(readText(whole.path()) == std::string(FILE_LENGTH, 'a'));
    UploadFile longer;
    longer.write(std::string(FILE_LENGTH, 'a'));
    longer.write("b");
    EXPECT_EQ(longer.size(), FILE_LENGTH + 1);
    EXPECT_EQ(longer.path(), "");
}

TEST_F(UploadFileTest, saturatesSize) {
    const std::string piece(16 * 1024 * 1024, 'a');
    const std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
    UploadFile file;
    std::uint64_t fed = 0;
    while (fed + piece.size() <= largest) {
        file.write(piece);
        fed += piece.size();
    }
    EXPECT_EQ(file.size(), fed);
    file.write(std::string_view(piece).substr(0, largest - fed));
    EXPECT_EQ(file.size(), largest);
    file.write("more");
    EXPECT_EQ(file.size(), largest);
    EXPECT_EQ(file.path(), "");
}

TEST_F(UploadFileTest, makesNoFileWithoutBytes) {
    UploadFile file;
    EXPECT_EQ(file.size(), 0U);
    EXPECT_EQ(file.path(), "");
    file.write("");
    EXPECT_EQ(file.size(), 0U);
    EXPECT_EQ(file.path(), "");
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(unnamedSizes(), IsEmpty());
}

TEST_F(UploadFileTest, removesUnmovedFile) {
    {
        UploadFile named;
        named.write("named");
        EXPECT_TRUE(exists(named.path()));
        UploadFile unnamed;
        unnamed.write("unnamed");
    }
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(unnamedSizes(), IsEmpty());
}

TEST_F(UploadFileTest, keepsMovedFile) {
    const std::string kept = boardFile("/var/tmp/kept");
    {
        UploadFile file;
        file.write("content");
        std::filesystem::rename(file.path(), kept);
    }
    EXPECT_THAT(names(), ElementsAre("kept"));
    EXPECT_EQ(readText(kept), "content");
}

TEST_F(UploadFileTest, isEmptyAfterRemove) {
    UploadFile file;
    file.write("content");
    EXPECT_NE(file.path(), "");
    file.remove();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(file.size(), 0U);
    EXPECT_EQ(file.path(), "");
    file.remove();
    file.write("more");
    EXPECT_EQ(readText(file.path()), "more");
}

TEST_F(UploadFileTest, leavesNothingIfProcessIsKilled) {
    ChildProcess process([] {
        UploadFile file;
        file.write(std::string(100000, 'a'));
        std::cout << unnamedSizes().size() << std::endl;
        for (;;) {
            ::pause();
        }
        return 0;
    });
    ASSERT_EQ(process.readLine(), "1");
    EXPECT_THAT(names(), IsEmpty());
    process.kill();
    EXPECT_EQ(process.wait().signal, SIGKILL);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(UploadFileTest, countsBytesWithoutFolder) {
    std::filesystem::remove_all(boardFile("/var/tmp"));
    UploadFile file;
    file.write("one");
    file.write("two");
    EXPECT_EQ(file.size(), 6U);
    EXPECT_EQ(pathOf(file), NOT_STORED);
    EXPECT_EQ(pathOf(file), NOT_STORED);
}

TEST_F(UploadFileTest, doesNotStoreIncompleteFile) {
    std::filesystem::remove_all(boardFile("/var/tmp"));
    UploadFile file;
    file.write("one");
    std::filesystem::create_directory(boardFile("/var/tmp"));
    file.write("two");
    EXPECT_EQ(pathOf(file), NOT_STORED);
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(unnamedSizes(), IsEmpty());
    file.remove();
    EXPECT_EQ(pathOf(file), "");
}

TEST_F(UploadFileTest, failsIfFolderDisappears) {
    UploadFile file;
    file.write("content");
    std::filesystem::remove_all(boardFile("/var/tmp"));
    EXPECT_EQ(pathOf(file), NOT_STORED);
    EXPECT_EQ(file.size(), 7U);
}

TEST_F(UploadFileTest, failsOnPartialWrite) {
    const ChildResult result = runInChild([] {
        const ScopedFileSizeLimit limit(1000);
        UploadFile fitting;
        fitting.write(std::string(1000, 'a'));
        std::cout << readText(fitting.path()).size() << '\n';
        UploadFile once;
        once.write(std::string(1001, 'a'));
        std::cout << once.size() << ' ' << pathOf(once) << '\n';
        UploadFile twice;
        twice.write(std::string(999, 'a'));
        twice.write("bc");
        twice.write("");
        std::cout << twice.size() << ' ' << pathOf(twice) << '\n';
        std::cout << names().size() << std::endl;
        return 0;
    });
    EXPECT_THAT(linesOf(result.output),
                ElementsAre("1000", "1001 " + NOT_STORED, "1001 " + NOT_STORED, "1"))
        << result.errors;
    EXPECT_THAT(names(), IsEmpty());
}

}  // namespace VeskLib::Test
