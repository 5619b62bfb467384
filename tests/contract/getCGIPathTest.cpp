#include <VeskLib/getCGIPath.h>

#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace VeskLib::Test {

using testing::EndsWith;

TEST(GetCGIPathTest, returnsAbsolutePathEndingInArgument) {
    for (const char* path : {"/var/tmp/efi_backup", "/var/tmp/restored_eficonf.lock",
                             "/usr/local/www/skel/skeleton_efi_backup.txt"}) {
        EXPECT_THAT(getCGIPath(path), EndsWith(path));
        EXPECT_EQ(getCGIPath(path).front(), '/');
    }
}

TEST(GetCGIPathTest, everyPathIsUnderSameRoot) {
    const std::string root = getCGIPath("");
    EXPECT_EQ(getCGIPath("/var/tmp/efi_backup"), root + "/var/tmp/efi_backup");
    EXPECT_EQ(getCGIPath("/var/tmp/efi_backup") + "0123456789abcdef",
              getCGIPath("/var/tmp/efi_backup0123456789abcdef"));
}

TEST(GetCGIPathTest, stagingFolderIsWritable) {
    const std::string path = getCGIPath("/var/tmp/contract_path_test");
    writeText(path, "text");
    EXPECT_EQ(readText(path), "text");
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

}  // namespace VeskLib::Test
