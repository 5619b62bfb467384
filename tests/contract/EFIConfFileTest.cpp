#include <VeskLib/VeskUi/EFIConfFile.h>

#include "tests/support/files.h"

#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

#include <cstdio>

namespace VeskLib::Test {

using VeskUi::EFIConfFile;

class EFIConfFileTest : public testing::Test {
public:
    ~EFIConfFileTest() override { static_cast<void>(std::remove(path.c_str())); }

protected:
    EFIConfFileTest() : path(getCGIPath("/var/tmp/contract_test.dat")) {}

    // Both forms refuse the file and leave the outputs as they were.
    void expectRefused(const std::string& content) {
        writeText(path, content);
        EFIConfFile file(path.c_str());
        EFIConfFile::EFIConfFileHeader header = {.revision = 77, .saveTime = 78};
        std::string version = "version";
        unsigned int partition = 79;
        std::string name = "name";
        EXPECT_THROW(file.getFileHeader(header, version), PException);
        EXPECT_THROW(file.getFileHeader(header, version, partition, name), PException);
        EXPECT_EQ(header.revision, 77u);
        EXPECT_EQ(header.saveTime, 78u);
        EXPECT_EQ(version, "version");
        EXPECT_EQ(partition, 79u);
        EXPECT_EQ(name, "name");
    }

    std::string path;
};

TEST_F(EFIConfFileTest, anAbsentFileThrowsWhenOpened) {
    EXPECT_THROW(EFIConfFile file(path.c_str()), PException);
    EXPECT_THROW(EFIConfFile file(""), PException);
}

TEST_F(EFIConfFileTest, anEmptyFileIsRefused) {
    expectRefused("");
}

TEST_F(EFIConfFileTest, aFileOfAnotherKindIsRefused) {
    expectRefused("<html><body>not a configuration file</body></html>\n");
    expectRefused(std::string(100, '\0'));
    expectRefused(std::string(1000, '\xFF'));
    expectRefused("EFICONF");
}

TEST_F(EFIConfFileTest, aFileThatIsTooLargeIsRefused) {
    expectRefused(std::string(393216 + 1, 'x'));
}

TEST_F(EFIConfFileTest, aFolderIsRefused) {
    EXPECT_THROW(
        {
            EFIConfFile file(getCGIPath("/var/tmp").c_str());
            EFIConfFile::EFIConfFileHeader header;
            std::string version;
            file.getFileHeader(header, version);
        },
        PException);
}

}  // namespace VeskLib::Test
