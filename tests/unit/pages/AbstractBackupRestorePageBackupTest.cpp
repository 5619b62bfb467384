// Tests of AbstractBackupRestorePage: how it requests a backup and offers it for download.

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/files.h"
#include "tests/unit/support/PageTest.h"
#include "tests/unit/support/TemporaryFolder.h"
#include "tests/unit/support/TestPage.h"

#include <sys/stat.h>

#include <cerrno>

namespace VeskLib::Test {

namespace {

const unsigned int NOON_OF_14_NOVEMBER_2026 = 1794657600;  // UTC
const unsigned int NOON_OF_1_JANUARY_2027 = 1798804800;    // UTC
const unsigned int NOON_OF_5_MARCH_2027 = 1804248000;      // UTC

}  // namespace

class BackupTest : public PageTest {
protected:
    BackupTest() {
        Scripted::forgetCalls();
        script.replies[0x020100A3].errorCode = 0;
        script.fileHeader.saveTime = NOON_OF_14_NOVEMBER_2026;
        script.fileVersion = "1.23 B";
    }

    void backup(unsigned int partition, bool named) { page.backup(partition, path, named); }

    // Returns the printed page that makes the browser download the backup as `name`.
    static std::string pageThatFetches(const std::string& name) {
        return "[/page.txt\n|filepath=TextString(/common/download.cgi?functionID=5&filename=" +
               name +
               ", false, true, 6)\n|onload_function=TextString(downloadFunction(), false, false, "
               "6)]";
    }

    std::string printedPage() {
        const std::size_t before = output().size();
        page.printHTML();
        return output().substr(before);
    }

    ScopedEnvironment timeZone{"TZ", "UTC0"};
    TestPage page{requester, formInfo, messageMgr, &displayMode, "/page.txt", 105};
    std::string path = "/backup";
};

TEST_F(BackupTest, createsFileRequestsBackupAndOffersDownload) {
    backup(3, true);
    const std::string link =
        "/common/download.cgi?functionID=5&filename="
        "Partition3_20261114_123B.dat";
    EXPECT_THAT(calls(),
                testing::ElementsAre(
                    "creat /backup 0666", "close 100000", "setInfo 0x020100A3 [00 00 00 03]",
                    "new EFIConfFile(/backup)", "getFileHeader",
                    "new TextString(" + link + ", false, true, 6)", "insertIntoMap filepath",
                    "new TextString(downloadFunction(), false, false, 6)",
                    "insertIntoMap onload_function", "delete EFIConfFile(/backup)"));
    EXPECT_EQ(printedPage(), pageThatFetches("Partition3_20261114_123B.dat"));
}

TEST_F(BackupTest, showsNoMessageOnSuccess) {
    backup(3, true);
    EXPECT_EQ(page.message, "");
    EXPECT_FALSE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
}

TEST_F(BackupTest, keepsEarlierNotice) {
    page.addNotice("first");
    backup(3, true);
    EXPECT_EQ(page.message, "first");
    EXPECT_TRUE(page.alertFlag);
}

TEST_F(BackupTest, omitsPartitionFromFileNameWhenUnnamed) {
    script.fileHeader.saveTime = NOON_OF_5_MARCH_2027;
    script.fileVersion = "-";
    backup(7, false);
    EXPECT_THAT(calls({"setInfo"}), testing::ElementsAre("setInfo 0x020100A3 [00 00 00 07]"));
    EXPECT_EQ(printedPage(), pageThatFetches("BIOS_20270305_Unknown.dat"));
}

TEST_F(BackupTest, namesPartitionUnsignedAndUnpadded) {
    backup(0xFFFFFFFF, true);
    EXPECT_THAT(calls({"setInfo"}), testing::ElementsAre("setInfo 0x020100A3 [FF FF FF FF]"));
    EXPECT_EQ(printedPage(), pageThatFetches("Partition4294967295_20261114_123B.dat"));
}

TEST_F(BackupTest, replacesLinkOfEarlierBackup) {
    backup(1, true);
    backup(2, true);
    EXPECT_EQ(printedPage(), pageThatFetches("Partition2_20261114_123B.dat"));
    EXPECT_THAT(calls({"delete TextString"}), testing::SizeIs(2));
}

TEST_F(BackupTest, succeedsWhenOnlyBackEndCanWriteFile) {
    script.creatError = EACCES;
    backup(3, true);
    EXPECT_THAT(calls({"creat", "lmsg", "putLog", "close", "setInfo"}),
                testing::ElementsAre("creat /backup 0666", "lmsg_getmsg 20011",
                                     "putLog 0 lmsg 20011 [EFIBackupPage::backup()::create] [" +
                                         std::to_string(EACCES) + "]",
                                     "close -1", "setInfo 0x020100A3 [00 00 00 03]"));
    EXPECT_EQ(page.message, "");
    EXPECT_FALSE(page.alertFlag);
    EXPECT_EQ(printedPage(), pageThatFetches("Partition3_20261114_123B.dat"));
}

// In a process without standard input, 0 is an ordinary file descriptor.
TEST_F(BackupTest, acceptsDescriptorZero) {
    script.descriptor = 0;
    backup(3, true);
    EXPECT_THAT(calls({"close", "putLog"}), testing::ElementsAre("close 0"));
}

TEST_F(BackupTest, ignoresFailingClose) {
    script.closeError = EIO;
    backup(3, true);
    EXPECT_THAT(calls({"putLog"}), testing::IsEmpty());
    EXPECT_EQ(printedPage(), pageThatFetches("Partition3_20261114_123B.dat"));
}

TEST_F(BackupTest, refusalShowsNoticeWithoutLink) {
    script.replies[0x020100A3].errorCode = 1540;
    backup(3, true);
    EXPECT_THAT(calls(), testing::ElementsAre("creat /backup 0666", "close 100000",
                                              "setInfo 0x020100A3 [00 00 00 03]", "getErrorCode",
                                              "getMessage message 72/1540"));
    EXPECT_EQ(page.message, "message 72/1540");
    EXPECT_TRUE(page.alertFlag);
    EXPECT_FALSE(page.errorFlag);
    EXPECT_EQ(printedPage(), "[/page.txt]");
}

TEST_F(BackupTest, refusalUsesMessageOfErrorCode) {
    for (const int code : {1047, 1539, 1549, 1551}) {
        script.replies[0x020100A3].errorCode = code;
        backup(3, true);
    }
    EXPECT_EQ(page.message,
              "message 250/1047<br>message 64/1539<br>message 73/1549<br>message 353/1551");
}

TEST_F(BackupTest, throwsWhenFileCannotBeOpened) {
    script.openError = 1103;
    EXPECT_EQ(thrownDetail([&] { backup(3, true); }), 1103);
    EXPECT_EQ(printedPage(), "[/page.txt]");
    EXPECT_EQ(page.message, "");
}

TEST_F(BackupTest, throwsWhenHeaderIsUnreadable) {
    script.headerError = 1104;
    EXPECT_EQ(thrownDetail([&] { backup(3, true); }), 1104);
    EXPECT_EQ(printedPage(), "[/page.txt]");
    EXPECT_THAT(calls({"getFileHeader", "delete"}),
                testing::ElementsAre("getFileHeader", "delete EFIConfFile(/backup)"));
}

TEST_F(BackupTest, replacesFileOfEarlierBackup) {
    const TemporaryFolder folder;
    script.realFiles = true;
    path = folder.path / "backup";
    writeText(path, "earlier");
    backup(3, true);
    EXPECT_TRUE(std::filesystem::is_empty(path));
}

TEST_F(BackupTest, createsFileSubjectToUmask) {
    const TemporaryFolder folder;
    script.realFiles = true;
    path = folder.path / "backup";
    const mode_t before = umask(0027);
    backup(3, true);
    umask(before);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
}

struct VersionCase {
    std::string version;
    std::string part;
};

std::ostream& operator<<(std::ostream& stream, const VersionCase& testCase) {
    return stream << testing::PrintToString(testCase.version);
}

class BackupVersionTest : public BackupTest, public testing::WithParamInterface<VersionCase> {};

TEST_P(BackupVersionTest, becomesPartOfFileName) {
    script.fileVersion = GetParam().version;
    backup(3, true);
    EXPECT_EQ(printedPage(), pageThatFetches("Partition3_20261114_" + GetParam().part + ".dat"));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheFile, BackupVersionTest,
    testing::Values(VersionCase{"1.23 B", "123B"}, VersionCase{"10.20.30", "102030"},
                    VersionCase{"-1.0", "Unknown"}, VersionCase{"-", "Unknown"},
                    VersionCase{"1-0", "1-0"}, VersionCase{" -1", "-1"}, VersionCase{".-1", "-1"},
                    VersionCase{"", ""}, VersionCase{" . ", ""}, VersionCase{"1\t2", "1\t2"},
                    VersionCase{std::string("1.2\0003.4", 7), "12"},
                    VersionCase{std::string("\0001", 2), ""},
                    VersionCase{"a&b=c%20/..\"<>", "a&b=c%20/\"<>"}));

struct DateCase {
    const char* timeZone;
    unsigned int saveTime;
    const char* part;
};

std::ostream& operator<<(std::ostream& stream, const DateCase& testCase) {
    return stream << testCase.saveTime << " in " << testCase.timeZone;
}

class BackupDateTest : public BackupTest, public testing::WithParamInterface<DateCase> {};

TEST_P(BackupDateTest, isLocalCalendarDay) {
    const ScopedEnvironment local("TZ", GetParam().timeZone);
    script.fileHeader.saveTime = GetParam().saveTime;
    // The header's other number is not a time.
    script.fileHeader.revision = 86400 * 400;
    backup(3, true);
    EXPECT_EQ(printedPage(),
              pageThatFetches("Partition3_" + std::string(GetParam().part) + "_123B.dat"));
}

INSTANTIATE_TEST_SUITE_P(
    OfTheFile, BackupDateTest,
    testing::Values(DateCase{"UTC0", NOON_OF_1_JANUARY_2027, "20270101"},
                    DateCase{"UTC0", NOON_OF_14_NOVEMBER_2026, "20261114"},
                    // Compared with UTC, it is already the next day or still the day before.
                    DateCase{"JST-9", NOON_OF_14_NOVEMBER_2026 - 16 * 3600, "20261114"},
                    DateCase{"EST5", NOON_OF_1_JANUARY_2027 - 10 * 3600, "20261231"},
                    DateCase{"UTC0", 0, "19700101"},
                    // The month and the day may have two digits.
                    DateCase{"UTC0", 1791547200, "20261009"},
                    DateCase{"UTC0", 1791633600, "20261010"},
                    // The save time is unsigned.
                    DateCase{"UTC0", 0xFFFFFFFF, "21060207"}));

}  // namespace VeskLib::Test
