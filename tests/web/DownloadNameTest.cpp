#include "board/web/DownloadName.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <ctime>

namespace VeskLib::Test {

namespace {

using Board::DownloadName;

const std::uint32_t NOON_ON_14_NOVEMBER_2026 = 1794657600;  // UTC

bool isName(const std::string& text) {
    return DownloadName::parse(text).has_value();
}

class DownloadNameTest : public testing::Test {
protected:
    DownloadNameTest() : zone("TZ", "UTC") { tzset(); }

    static Host::ConfigurationFile makeFile(std::uint32_t partition, const std::string& version) {
        Host::ConfigurationFile file;
        file.saveTime = NOON_ON_14_NOVEMBER_2026;
        file.partition = partition;
        file.version = version;
        return file;
    }

    static bool fits(const std::string& name, const Host::ConfigurationFile& file) {
        const std::optional<DownloadName> parsed = DownloadName::parse(name);
        EXPECT_TRUE(parsed) << name;
        return parsed && parsed->fits(file);
    }

private:
    ScopedEnvironment zone;
};

TEST_F(DownloadNameTest, acceptsNamesThatTheProgramMakes) {
    EXPECT_TRUE(isName("Partition3_20261114_123B.dat"));
    EXPECT_TRUE(isName("Partition0_20270101_.dat"));
    EXPECT_TRUE(isName("Partition4294967295_20261114_Unknown.dat"));
    EXPECT_TRUE(isName("BIOS_20270305_Unknown.dat"));
    EXPECT_TRUE(isName("BIOS_20270305_a_b-c+d;e.dat"));
    EXPECT_TRUE(isName("BIOS_20270305_.dat.dat"));
    EXPECT_TRUE(isName("BIOS_20270305_1/2\\3\"4'5.dat"));
    EXPECT_TRUE(isName("Partition2_20261114_\xE7\x89\x88\xF0\x9F\x98\x80.dat"));
}

TEST_F(DownloadNameTest, rejectsOtherNames) {
    for (const std::string name : {"",
                                   ".dat",
                                   "Partition3_20261114_123B",
                                   "Partition3_20261114_123B.DAT",
                                   "Partition3_20261114_123B.dat ",
                                   " Partition3_20261114_123B.dat",
                                   "Partition3_20261114_123B.dat.exe",
                                   "partition3_20261114_123B.dat",
                                   "Partition_20261114_123B.dat",
                                   "Partition-3_20261114_123B.dat",
                                   "Partition3x_20261114_123B.dat",
                                   "Partition12345678901_20261114_123B.dat",
                                   "Partition3_2026111_123B.dat",
                                   "Partition3_202611144_123B.dat",
                                   "Partition3_2026111a_123B.dat",
                                   "Partition3_20261114123B.dat",
                                   "Partition3_20261114.dat",
                                   "Partition3.dat",
                                   "BIOS3_20261114_123B.dat",
                                   "BIOS20261114_123B.dat",
                                   "BIOS_.dat",
                                   "bios_20261114_123B.dat",
                                   "Partition",
                                   "BIOS_",
                                   "Partition3_20261114_.da"}) {
        EXPECT_FALSE(isName(name)) << name;
    }
}

TEST_F(DownloadNameTest, rejectsUnprintableVersion) {
    for (const std::string version :
         {"a\r\nSet-Cookie: x=y", "a\nb", "a\tb", "a\x7F", "a\xC2\x85", "\xFF", "a\xC3", "\xC0\xAF",
          "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(isName("Partition3_20261114_" + version + ".dat")) << version;
    }
    EXPECT_FALSE(isName(std::string("Partition3_20261114_a\0b.dat", 27)));
}

TEST_F(DownloadNameTest, rejectsPathBeforeName) {
    EXPECT_FALSE(isName("../Partition3_20261114_123B.dat"));
    EXPECT_FALSE(isName("/var/tmp/Partition3_20261114_123B.dat"));
    EXPECT_FALSE(isName("C:\\Partition3_20261114_123B.dat"));
}

TEST_F(DownloadNameTest, fitsVersionAsAPageShowsIt) {
    const Host::ConfigurationFile file = makeFile(3,
                                                  "1.2\xE2\x80\xAE"
                                                  "3");
    EXPECT_TRUE(
        fits("Partition3_20261114_12\xE2\x80\xAE"
             "3.dat",
             file));
    EXPECT_TRUE(
        fits("Partition3_20261114_12\uFFFD"
             "3.dat",
             file));
    EXPECT_FALSE(fits("Partition3_20261114_123.dat", file));
}

TEST_F(DownloadNameTest, fitsItsOwnFile) {
    EXPECT_TRUE(fits("Partition3_20261114_123B.dat", makeFile(3, "1.23 B")));
    EXPECT_TRUE(fits("BIOS_20261114_123B.dat", makeFile(0, "1.23 B")));
    EXPECT_TRUE(fits("Partition0_20261114_102030.dat", makeFile(0, "10.20.30")));
    EXPECT_TRUE(fits("Partition2_20261114_Unknown.dat", makeFile(2, "-")));
    EXPECT_TRUE(fits("Partition2_20261114_Unknown.dat", makeFile(2, "-1.0")));
    EXPECT_TRUE(fits("Partition2_20261114_.dat", makeFile(2, "")));
    EXPECT_TRUE(fits("Partition2_20261114_.dat", makeFile(2, ". .")));
    EXPECT_TRUE(fits("Partition2_20261114_1.dat", makeFile(2, std::string("1\0002", 3))));
}

TEST_F(DownloadNameTest, fitsNoOtherFile) {
    const Host::ConfigurationFile file = makeFile(3, "1.23 B");
    for (const char* name :
         {"Partition2_20261114_123B.dat", "Partition03_20261114_123B.dat",
          "Partition3_20261115_123B.dat", "Partition3_20261114_123C.dat",
          "Partition3_20261114_123.dat", "Partition3_20261114_1.23 B.dat",
          "Partition3_20261114_Unknown.dat", "BIOS_20261115_123B.dat", "BIOS_20261114_.dat"}) {
        EXPECT_FALSE(fits(name, file)) << name;
    }
}

TEST_F(DownloadNameTest, dateIsLocalWithTwoDigitMonthAndDay) {
    Host::ConfigurationFile file = makeFile(0, "1");
    file.saveTime = 1798761600;  // 2027-01-01 00:00 UTC
    EXPECT_TRUE(fits("Partition0_20270101_1.dat", file));
    const ScopedEnvironment west("TZ", "WST+1");
    tzset();
    EXPECT_TRUE(fits("Partition0_20261231_1.dat", file));
    EXPECT_FALSE(fits("Partition0_20270101_1.dat", file));
}

TEST_F(DownloadNameTest, dispositionNamesTheFile) {
    const auto disposition = [](const std::string& name) {
        return DownloadName::parse(name)->contentDisposition();
    };
    EXPECT_EQ(disposition("Partition3_20261114_123B.dat"),
              "attachment; filename=\"Partition3_20261114_123B.dat\"");
    EXPECT_EQ(disposition("BIOS_20261114_\xE7\x89\x88 1.dat"),
              "attachment; filename=\"BIOS_20261114__ 1.dat\"; "
              "filename*=UTF-8''BIOS_20261114_%E7%89%88%201.dat");
    EXPECT_EQ(disposition("BIOS_20261114_/../1\"; x='\\.dat"),
              "attachment; filename=\"BIOS_20261114__.._1_; x=__.dat\"");
    EXPECT_EQ(disposition("BIOS_20261114_/\xE7\x89\x88.dat"),
              "attachment; filename=\"BIOS_20261114___.dat\"; "
              "filename*=UTF-8''BIOS_20261114__%E7%89%88.dat");
}

}  // namespace

}  // namespace VeskLib::Test
