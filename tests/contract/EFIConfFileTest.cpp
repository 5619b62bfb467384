#include <VeskLib/VeskUi/EFIConfFile.h>

#include "tests/contract/platformSpecifics.h"
#include "tests/support/files.h"

#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace VeskLib::Test {

using VeskUi::EFIConfFile;

class EFIConfFileTest : public testing::Test {
public:
    ~EFIConfFileTest() override { static_cast<void>(std::remove(path.c_str())); }

protected:
    EFIConfFileTest()
        : path(getCGIPath("/var/tmp/contract_file_") + std::to_string(::getpid()) + ".dat") {}

    // Checks that both overloads reject the file and leave the outputs unchanged.
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
    const std::vector<ConfigurationFileSample> samples = configurationFileSamples();
};

TEST_F(EFIConfFileTest, readsEveryHeaderField) {
    ASSERT_FALSE(samples.empty());
    for (const ConfigurationFileSample& sample : samples) {
        writeText(path, sample.bytes);
        EFIConfFile file(path.c_str());
        for (int times = 0; times < 2; ++times) {
            EFIConfFile::EFIConfFileHeader header;
            std::string version;
            unsigned int partition = 79;
            std::string name;
            file.getFileHeader(header, version, partition, name);
            EXPECT_EQ(header.revision, sample.revision);
            EXPECT_EQ(header.saveTime, sample.saveTime);
            EXPECT_EQ(version, sample.version);
            EXPECT_EQ(partition, sample.partition);
            EXPECT_EQ(name, sample.partitionName);
        }
    }
}

TEST_F(EFIConfFileTest, shortFormReadsTheSame) {
    for (const ConfigurationFileSample& sample : samples) {
        writeText(path, sample.bytes);
        EFIConfFile::EFIConfFileHeader header;
        std::string version;
        EFIConfFile(path.c_str()).getFileHeader(header, version);
        EXPECT_EQ(header.revision, sample.revision);
        EXPECT_EQ(header.saveTime, sample.saveTime);
        EXPECT_EQ(version, sample.version);
    }
}

TEST_F(EFIConfFileTest, rejectsTruncatedOrExtendedFile) {
    for (const ConfigurationFileSample& sample : samples) {
        const std::size_t step = std::max<std::size_t>(sample.bytes.size() / 100, 1);
        for (std::size_t size = 0; size < sample.bytes.size(); size += step) {
            SCOPED_TRACE(size);
            expectRefused(sample.bytes.substr(0, size));
        }
        expectRefused(sample.bytes.substr(0, sample.bytes.size() - 1));
        expectRefused(sample.bytes + '\0');
    }
}

TEST_F(EFIConfFileTest, rejectsDamagedFile) {
    for (const ConfigurationFileSample& sample : samples) {
        const std::size_t step = std::max<std::size_t>(sample.bytes.size() / 100, 1);
        for (std::size_t offset = 0; offset < sample.bytes.size(); offset += step) {
            SCOPED_TRACE(offset);
            std::string damaged = sample.bytes;
            damaged[offset] = static_cast<char>(damaged[offset] ^ 0x20);
            expectRefused(damaged);
        }
    }
}

TEST_F(EFIConfFileTest, constructorThrowsForMissingFile) {
    EXPECT_THROW(EFIConfFile file(path.c_str()), PException);
    EXPECT_THROW(EFIConfFile file(""), PException);
}

TEST_F(EFIConfFileTest, rejectsEmptyFile) {
    expectRefused("");
}

TEST_F(EFIConfFileTest, rejectsFileOfAnotherFormat) {
    expectRefused("<html><body>not a configuration file</body></html>\n");
    expectRefused(std::string(100, '\0'));
    expectRefused(std::string(1000, '\xFF'));
}

TEST_F(EFIConfFileTest, rejectsOversizedFile) {
    expectRefused(std::string(393216 + 1, 'x'));
}

TEST_F(EFIConfFileTest, rejectsFolder) {
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
