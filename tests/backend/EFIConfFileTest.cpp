#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/EFIConfFile.h>

#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "tests/backend/support/RootTest.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskLib::Test {

using namespace VeskUi;

namespace {

class EFIConfFileTest : public RootTest {
protected:
    EFIConfFileTest() {
        file.saveTime = 1236384000;
        file.partition = 3;
        file.version = "1.23 B";
        file.partitionName = "Test";
        file.payload = {1, 2, 3};
    }

    void write() const { writeBytes(path, encode(file)); }

    // Returns the detail code of the exception, or 0 if the file is read. Checks that a failure
    // leaves the outputs unchanged.
    int refusal() const {
        EFIConfFile::EFIConfFileHeader header = {77, 78};
        std::string version = "v";
        unsigned int partition = 79;
        std::string name = "n";
        try {
            EFIConfFile opened(path.c_str());
            opened.getFileHeader(header, version, partition, name);
        } catch (const PException& failure) {
            EXPECT_EQ(header.revision, 77U);
            EXPECT_EQ(header.saveTime, 78U);
            EXPECT_EQ(version, "v");
            EXPECT_EQ(partition, 79U);
            EXPECT_EQ(name, "n");
            return failure.getExceptionDetail();
        }
        return 0;
    }

    const std::string path = at("conf.dat");
    Host::ConfigurationFile file;
};

}  // namespace

TEST_F(EFIConfFileTest, shortFormReadsHeaderAndVersion) {
    write();
    EFIConfFile opened(path.c_str());
    EFIConfFile::EFIConfFileHeader header;
    std::string version;
    opened.getFileHeader(header, version);
    EXPECT_EQ(header.revision, 1U);
    EXPECT_EQ(header.saveTime, 1236384000U);
    EXPECT_EQ(version, "1.23 B");
}

TEST_F(EFIConfFileTest, longFormRecordsHashOfShownFile) {
    write();
    Host::setShownFile("");
    EFIConfFile::EFIConfFileHeader header;
    std::string version;
    EFIConfFile(path.c_str()).getFileHeader(header, version);
    EXPECT_EQ(Host::shownFile(), "");
    EXPECT_EQ(refusal(), 0);
    EXPECT_EQ(Host::shownFile(), Host::sha256Hex(encode(file)));
    Host::setShownFile("");
}

TEST_F(EFIConfFileTest, longFormReadsPartitionToo) {
    write();
    EFIConfFile opened(path.c_str());
    for (int time = 0; time < 2; ++time) {  // a second call starts over
        EFIConfFile::EFIConfFileHeader header;
        std::string version;
        unsigned int partition = 0;
        std::string name;
        opened.getFileHeader(header, version, partition, name);
        EXPECT_EQ(header.saveTime, 1236384000U);
        EXPECT_EQ(version, "1.23 B");
        EXPECT_EQ(partition, 3U);
        EXPECT_EQ(name, "Test");
    }
}

TEST_F(EFIConfFileTest, throwsForUnreadableFile) {
    EXPECT_EQ(refusal(), Host::FILE_NOT_READABLE);
    ASSERT_EQ(::symlink("elsewhere", path.c_str()), 0);
    EXPECT_EQ(refusal(), Host::FILE_NOT_READABLE);
}

TEST_F(EFIConfFileTest, throwsForPipeAndFolder) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(refusal(), Host::FILE_NOT_READABLE);
    ASSERT_EQ(::unlink(path.c_str()), 0);
    ASSERT_EQ(::mkdir(path.c_str(), 0700), 0);
    EXPECT_EQ(refusal(), Host::FILE_NOT_READABLE);
}

TEST_F(EFIConfFileTest, throwsForDamageAtAnyByte) {
    const Bytes whole = encode(file);
    for (std::size_t position = 0; position < whole.size(); ++position) {
        Bytes damaged = whole;
        damaged[position] = static_cast<unsigned char>(~damaged[position]);
        writeBytes(path, damaged);
        EXPECT_EQ(refusal(), Host::NOT_A_CONFIGURATION_FILE) << position;
        writeBytes(path, cut(whole, position));
        EXPECT_EQ(refusal(), Host::NOT_A_CONFIGURATION_FILE) << position;
    }
}

TEST_F(EFIConfFileTest, throwsForOversizedFile) {
    file.payload.assign(Host::LARGEST_CONFIGURATION_FILE, 0);
    writeBytes(path, file.payload);
    EXPECT_EQ(refusal(), Host::NOT_A_CONFIGURATION_FILE);
    file.payload.push_back(0);
    writeBytes(path, file.payload);
    EXPECT_EQ(refusal(), Host::NOT_A_CONFIGURATION_FILE);
}

}  // namespace VeskLib::Test
