#include "tests/inspector/inspector.h"

#include "tests/support/files.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using nlohmann::json;
using testing::ElementsAre;

namespace {

class EficonfCompareTest : public InspectorTest {
protected:
    // Returns the differences that are printed. Expects the same ones in the JSON report.
    std::vector<std::string> differences(const Host::ConfigurationFile& first,
                                         const Host::ConfigurationFile& second) const {
        const std::vector<std::string> command = {"compare", write("first.dat", first),
                                                  write("second.dat", second)};
        const ChildResult result = runInspector(command);
        EXPECT_EQ(result.exitStatus, DIFFERENT) << result.errors;
        std::vector<std::string> reported;
        const json report = runForJSON(command, DIFFERENT);
        for (const json& difference : report.at("differences")) {
            EXPECT_EQ(difference.size(), 3U);
            reported.push_back(difference.at("what").get<std::string>() + ": " +
                               difference.at("first").get<std::string>() + " -> " +
                               difference.at("second").get<std::string>());
        }
        EXPECT_EQ(linesOf(result.output), reported);
        return reported;
    }

    std::vector<std::string> payloadDifferences(const std::string& first,
                                                const std::string& second) const {
        return differences(makeSample(first), makeSample(second));
    }
};

}  // namespace

TEST_F(EficonfCompareTest, reportsEqualFiles) {
    const std::string first = write("a.dat", makeSample("Boot mode=UEFI\n"));
    const std::string second = write("b.dat", makeSample("Boot mode=UEFI\n"));
    const ChildResult result = runInspector({"compare", first, second});
    EXPECT_EQ(result.exitStatus, SAME);
    EXPECT_EQ(result.output, "The files have the same content.\n");
    const json report = runForJSON({"compare", first, second}, SAME);
    EXPECT_EQ(report.size(), 3U);
    EXPECT_EQ(report.at("differences"), json::array());
    EXPECT_EQ(report.at("first"), runForJSON({"show", first}, SAME));
    EXPECT_EQ(report.at("second"), runForJSON({"show", second}, SAME));
    EXPECT_EQ(runInspector({"compare", first, first}).exitStatus, SAME);
}

TEST_F(EficonfCompareTest, comparesEveryHeaderField) {
    const Host::ConfigurationFile sample = makeSample("abc");
    Host::ConfigurationFile other = sample;
    other.saveTime += 1;
    EXPECT_THAT(differences(sample, other),
                ElementsAre("saved on: 2026-03-07T12:00:00Z -> 2026-03-07T12:00:01Z"));
    other = sample;
    other.partition = 7;
    EXPECT_THAT(differences(sample, other), ElementsAre("partition: 3 -> 7"));
    other = sample;
    other.partitionName = "";
    EXPECT_THAT(differences(sample, other), ElementsAre("partition name: Alpha -> "));
    other = sample;
    other.version = "1.24 B";
    EXPECT_THAT(differences(sample, other), ElementsAre("BIOS version: 1.23 B -> 1.24 B"));
}

TEST_F(EficonfCompareTest, listsDifferencesInOrder) {
    Host::ConfigurationFile other = makeSample("b=2\n");
    other.saveTime = 0;
    other.partition = 0;
    other.partitionName = "Beta";
    other.version = "-";
    EXPECT_THAT(
        differences(makeSample("a=1\nb=10\n"), other),
        ElementsAre("saved on: 2026-03-07T12:00:00Z -> 1970-01-01T00:00:00Z", "partition: 3 -> 0",
                    "partition name: Alpha -> Beta", "BIOS version: 1.23 B -> -",
                    "payload size: 9 -> 4", "setting a: 1 -> (none)", "setting b: 10 -> 2"));
}

TEST_F(EficonfCompareTest, comparesSettingsByName) {
    EXPECT_THAT(payloadDifferences("Boot mode=UEFI\nBoot timeout=5\nSecure boot=\n",
                                   "Secure boot=\nBoot mode=UEFI\nBoot timeout=7\n"),
                ElementsAre("setting Boot timeout: 5 -> 7"));
    EXPECT_THAT(payloadDifferences("a=1\n", "a=1\nb=\n"),
                ElementsAre("payload size: 4 -> 7", "setting b: (none) -> "));
    EXPECT_THAT(payloadDifferences("a=x=1\n", "a=x=2\n"), ElementsAre("setting a: x=1 -> x=2"));
    EXPECT_THAT(payloadDifferences("", "a=1\n"),
                ElementsAre("payload size: 0 -> 4", "setting a: (none) -> 1"));
    EXPECT_THAT(payloadDifferences("A=1\na=1\n", "A=1\na=2\n"), ElementsAre("setting a: 1 -> 2"));
}

TEST_F(EficonfCompareTest, reportsReorderedSettings) {
    EXPECT_THAT(payloadDifferences("a=1\nb=2\n", "b=2\na=1\n"),
                ElementsAre("payload byte 0: 97 -> 98"));
    EXPECT_THAT(payloadDifferences("a=1\na=2\n", "a=1\na=3\n"),
                ElementsAre("payload byte 6: 50 -> 51"));
}

TEST_F(EficonfCompareTest, reportsFirstDifferingByte) {
    EXPECT_THAT(payloadDifferences("abc", "abd"), ElementsAre("payload byte 2: 99 -> 100"));
    EXPECT_THAT(payloadDifferences("abc", "ab"),
                ElementsAre("payload size: 3 -> 2", "payload byte 2: 99 -> (none)"));
    EXPECT_THAT(payloadDifferences("", "abc"),
                ElementsAre("payload size: 0 -> 3", "payload byte 0: (none) -> 97"));
    EXPECT_THAT(payloadDifferences("\xFF", std::string(1, '\0')),
                ElementsAre("payload byte 0: 255 -> 0"));
}

TEST_F(EficonfCompareTest, showsFirstByteIfNoSettingDiffers) {
    // An unterminated last line, a line without "=", control characters.
    EXPECT_THAT(payloadDifferences("a=1\nb=2", "a=1\nb=3"),
                ElementsAre("payload byte 6: 50 -> 51"));
    EXPECT_THAT(payloadDifferences("a=1\nb:2\n", "a=1\nb:3\n"),
                ElementsAre("payload byte 6: 50 -> 51"));
    EXPECT_THAT(payloadDifferences("a=\t1\n", "a=\t2\n"), ElementsAre("payload byte 3: 49 -> 50"));
    EXPECT_THAT(payloadDifferences("a=1\x7F\n", "a=2\x7F\n"),
                ElementsAre("payload byte 2: 49 -> 50"));
}

TEST_F(EficonfCompareTest, showsSettingsByNameIfOtherBytesDiffer) {
    EXPECT_THAT(payloadDifferences("a=1\n\x01\x02", "a=2\n\x01\x03"),
                ElementsAre("setting a: 1 -> 2", "byte 1 outside the settings: 2 -> 3"));
    EXPECT_THAT(payloadDifferences("\x01\na=1\nb=2\n", "\x01\na=1\nb=3\n"),
                ElementsAre("setting b: 2 -> 3"));
    EXPECT_THAT(payloadDifferences("\x01\na=1\nb=2\n", "\x03\x02\na=1\nc=2\n"),
                ElementsAre("payload size: 10 -> 11", "setting b: 2 -> (none)",
                            "setting c: (none) -> 2", "byte 0 outside the settings: 1 -> 3"));
    EXPECT_THAT(payloadDifferences("a=1\n", "a+1\n"),
                ElementsAre("setting a: 1 -> (none)", "byte 0 outside the settings: (none) -> 97"));
}

TEST_F(EficonfCompareTest, ignoresTimeOnlyOnRequest) {
    const std::string first = write("a.dat", makeSample("a=1\n"));
    Host::ConfigurationFile later = makeSample("a=1\n");
    later.saveTime += 86400;
    const std::string second = write("b.dat", later);
    EXPECT_EQ(runInspector({"compare", first, second}).exitStatus, DIFFERENT);
    const std::vector<std::string> command = {"compare", "--ignore-time", first, second};
    const ChildResult result = runInspector(command);
    EXPECT_EQ(result.exitStatus, SAME);
    EXPECT_EQ(result.output, "The files have the same content, but different save times.\n");
    EXPECT_EQ(runForJSON(command, SAME).at("differences"), json::array());
    later.partition = 4;
    const ChildResult other =
        runInspector({"compare", "--ignore-time", first, write("c.dat", later)});
    EXPECT_EQ(other.exitStatus, DIFFERENT);
    EXPECT_EQ(other.output, "partition: 3 -> 4\n");
    EXPECT_EQ(runInspector({"compare", "--ignore-time", first, first}).output,
              "The files have the same content.\n");
    EXPECT_EQ(runInspector({"compare", "--ignore-time", first, at("missing")}).exitStatus,
              NOT_USABLE);
}

TEST_F(EficonfCompareTest, showsUnusableFilesInsteadOfComparing) {
    const std::string sound = write("a.dat", makeSample("abc"));
    const std::string other = write("other", "abc");
    const std::string missing = at("missing");
    for (const std::vector<std::string>& files : std::vector<std::vector<std::string>>{
             {sound, other}, {other, sound}, {sound, missing}, {other, missing}, {other, other}}) {
        const std::vector<std::string> command = {"compare", files[0], files[1]};
        const ChildResult result = runInspector(command);
        EXPECT_EQ(result.exitStatus, NOT_USABLE);
        EXPECT_EQ(result.output, runInspector({"show", files[0]}).output +
                                     runInspector({"show", files[1]}).output);
        const json report = runForJSON(command, NOT_USABLE);
        EXPECT_EQ(report.at("first").at("file"), files[0]);
        EXPECT_EQ(report.at("second").at("file"), files[1]);
        EXPECT_EQ(report.at("differences"), json::array());
        EXPECT_EQ(report.at("first").contains("reason"), files[0] != sound);
        EXPECT_EQ(report.at("second").contains("reason"), files[1] != sound);
    }
}

TEST_F(EficonfCompareTest, printsNoControlCharacters) {
    Host::ConfigurationFile first = makeSample("a=1\n");
    Host::ConfigurationFile second = makeSample("a=2\n");
    first.version = "1\xC2\x9B";
    second.partitionName = "Al\x1B[2Jpha\n";
    const std::vector<std::string> command = {"compare", write("a.dat", first),
                                              write("b.dat", second)};
    EXPECT_EQ(
        runInspector(command).output,
        "partition name: Alpha -> Al?[2Jpha?\nBIOS version: 1? -> 1.23 B\nsetting a: 1 -> 2\n");
    const json report = runForJSON(command, DIFFERENT);
    EXPECT_EQ(report.at("differences").at(0).at("second"), "Al\x1B[2Jpha\n");
    EXPECT_EQ(report.at("differences").at(1).at("first"), "1\xC2\x9B");
}

TEST_F(EficonfCompareTest, reportsTextsThatAreNotUTF8) {
    Host::ConfigurationFile other = makeSample("abc");
    other.partitionName = "Al\xFFpha";
    const std::vector<std::string> command = {"compare", write("a.dat", makeSample("abc")),
                                              write("b.dat", other)};
    EXPECT_EQ(runForJSON(command, DIFFERENT).at("differences").at(0).at("second"),
              "Al\xEF\xBF\xBDpha");
}

TEST_F(EficonfCompareTest, comparesInEitherOrder) {
    EXPECT_THAT(payloadDifferences("abd", "abc"), ElementsAre("payload byte 2: 100 -> 99"));
    EXPECT_THAT(payloadDifferences("a=1\n", ""),
                ElementsAre("payload size: 4 -> 0", "setting a: 1 -> (none)"));
}

}  // namespace VeskLib::Test
