#include "client/folder/BackupFolder.h"

#include "client/Failure.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using namespace Efictl;
namespace fs = std::filesystem;

class BackupFolderTest : public testing::Test {
protected:
    BackupFolderTest() {
        char name[] = "/tmp/efictl-folder-XXXXXX";
        root = mkdtemp(name);
        path = root + "/out";
    }
    ~BackupFolderTest() override { fs::remove_all(root); }

    static Bytes fileOf(unsigned int partition, const std::string& name = "a") {
        VeskLib::Host::ConfigurationFile file;
        file.partition = partition;
        file.partitionName = name;
        return encode(file);
    }

    void put(const std::string& name, const Bytes& bytes) const {
        fs::create_directory(path);
        std::ofstream(path + "/" + name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }

    std::string root;
    std::string path;
};

TEST_F(BackupFolderTest, nameContainsPartitionAndTime) {
    const BackupName made = BackupName::make(3, 1795348467);
    EXPECT_EQ(made.name, "partition003-20261122T115427Z.dat");
    const std::optional<BackupName> read = BackupName::parse(made.name);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->partition, 3U);
    EXPECT_EQ(read->time, made.time);
}

TEST_F(BackupFolderTest, rejectsOtherNames) {
    for (const char* const name :
         {"", "a.dat", "partition3-20261122T115427Z.dat", "partition003-20261122T115427Z.dat~",
          "partition003-2026112T115427Z.dat", "../partition003-20261122T115427Z.dat",
          ".partition003-20261122T115427Z.dat", "partition003-20261122T115427.dat"}) {
        EXPECT_FALSE(BackupName::parse(name)) << name;
    }
}

TEST_F(BackupFolderTest, givesTwoBackupsOfOneSecondDifferentNames) {
    BackupFolder folder(path, BackupFolder::Use::WRITE);
    const BackupName first = folder.store(1, fileOf(1));
    const BackupName second = folder.store(1, fileOf(1));
    EXPECT_NE(first.name, second.name);
    EXPECT_EQ(folder.list(1).size(), 2U);
}

TEST_F(BackupFolderTest, isLockedAgainstOtherWriters) {
    const BackupFolder folder(path, BackupFolder::Use::WRITE);
    EXPECT_THROW(BackupFolder(path, BackupFolder::Use::WRITE), Failure);
    EXPECT_NO_THROW(BackupFolder(path, BackupFolder::Use::READ));
}

TEST_F(BackupFolderTest, findsNewestUsableBackup) {
    put("partition001-20200101T000000Z.dat", fileOf(1, "old"));
    put("partition001-20210101T000000Z.dat", fileOf(1, "new"));
    put("partition001-20220101T000000Z.dat", fileOf(2, "of another partition"));
    put("partition001-20230101T000000Z.dat", {1, 2, 3});
    const BackupFolder folder(path, BackupFolder::Use::READ);
    const std::optional<Backup> newest = folder.findNewest(1);
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->file.partitionName, "new");
    EXPECT_FALSE(folder.findNewest(2));
}

TEST_F(BackupFolderTest, keepsLastUsableBackup) {
    put("partition001-20200101T000000Z.dat", fileOf(1));
    put("partition001-20210101T000000Z.dat", {1});
    put("partition001-20220101T000000Z.dat", {});
    BackupFolder folder(path, BackupFolder::Use::WRITE);
    EXPECT_THAT(folder.removeOlder(1, 1), testing::IsEmpty());
    put("partition001-20190101T000000Z.dat", fileOf(1));
    EXPECT_THAT(folder.removeOlder(1, 1),
                testing::ElementsAre("partition001-20190101T000000Z.dat"));
}

TEST_F(BackupFolderTest, throwsIfFolderToReadIsAbsent) {
    EXPECT_THROW(BackupFolder(path, BackupFolder::Use::READ), Failure);
}

}  // namespace
