#include "tests/inspector/inspector.h"

#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace VeskLib::Test {

using Host::LARGEST_CONFIGURATION_FILE;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

// The well-known SHA-256 sums (FIPS 180-4) of "abc" and of the empty string.
const std::string SUM_OF_ABC = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const std::string SUM_OF_NOTHING =
    "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

const char* const NOT_A_FILE_OF_OURS = "not a configuration file, or damaged";

class EficonfShowTest : public InspectorTest {
protected:
    // Returns the verdict on a file that is not usable. Expects the same verdict in both output
    // formats.
    static std::string verdictOn(const std::string& path) {
        const ChildResult text = runInspector({"show", path});
        EXPECT_EQ(text.exitStatus, NOT_USABLE) << text.errors;
        const json report = runForJSON({"show", path}, NOT_USABLE);
        const std::string verdict = report.at("verdict");
        EXPECT_THAT(text.output, HasSubstr("Verdict: " + verdict));
        EXPECT_EQ(report.at("file"), path);
        for (const char* name : {"revision", "savedOn", "partition", "partitionName", "biosVersion",
                                 "payloadSize", "payloadSha256"}) {
            EXPECT_FALSE(report.contains(name)) << name;
        }
        return verdict;
    }
};

}  // namespace

TEST_F(EficonfShowTest, showsUsableFile) {
    const std::string path = write("a.dat", makeSample("abc"));
    const ChildResult result = runInspector({"show", path});
    EXPECT_EQ(result.exitStatus, SAME);
    const std::string sum = runForJSON({"show", path}, SAME).at("sha256");
    EXPECT_THAT(linesOf(result.output),
                ElementsAre("File: " + path, "Verdict: usable", "Size: 46 bytes", "SHA-256: " + sum,
                            "Revision: 1",
                            "Saved on: 2026-03-07T12:00:00Z, local time 2026-03-07T21:00:00+09:00",
                            "Partition: 3", "Partition name: Alpha", "BIOS version: 1.23 B",
                            "Payload: 3 bytes", "Payload SHA-256: " + SUM_OF_ABC,
                            "Settings: none; the payload is opaque, not name=value lines"));
}

TEST_F(EficonfShowTest, showsUsableFileAsJSON) {
    const std::string path = write("a.dat", makeSample("abc"));
    json report = runForJSON({"show", path}, SAME);
    const std::string sum = report.at("sha256");
    EXPECT_THAT(sum, testing::MatchesRegex("[0-9a-f]{64}"));
    EXPECT_EQ(report, json({{"file", path},
                            {"verdict", "usable"},
                            {"size", 46},
                            {"sha256", sum},
                            {"revision", 1},
                            {"savedOn", "2026-03-07T12:00:00Z"},
                            {"savedOnLocal", "2026-03-07T21:00:00+09:00"},
                            {"partition", 3},
                            {"partitionName", "Alpha"},
                            {"biosVersion", "1.23 B"},
                            {"payloadSize", 3},
                            {"payloadSha256", SUM_OF_ABC},
                            {"settings", json::array()},
                            {"bytesOutsideSettings", 3}}));
}

TEST_F(EficonfShowTest, listsTheSettingsOfThePayload) {
    const std::string path =
        write("a.dat", makeSample("Boot mode=UEFI\nBoot timeout=5\nSecure boot=\na=x=1\n"));
    const ChildResult result = runInspector({"show", path});
    EXPECT_EQ(result.exitStatus, SAME);
    EXPECT_THAT(result.output, EndsWith("\nSettings: 4\n"
                                        "  Boot mode=UEFI\n"
                                        "  Boot timeout=5\n"
                                        "  Secure boot=\n"
                                        "  a=x=1\n"));
    const json report = runForJSON({"show", path}, SAME);
    EXPECT_EQ(report.at("settings").size(), 4U);
    EXPECT_EQ(report.at("settings").at(1), json({{"name", "Boot timeout"}, {"value", "5"}}));
    EXPECT_EQ(report.at("settings").at(3), json({{"name", "a"}, {"value", "x=1"}}));
    EXPECT_EQ(report.at("bytesOutsideSettings"), 0);
}

TEST_F(EficonfShowTest, listsSettingsAmongOtherBytes) {
    // A line without a name, one without "=", one with a control character, one that is not UTF-8,
    // and an unterminated last line.
    const std::string path =
        write("a.dat", makeSample("=1\na=1\nb\nc=\t\nd=\xFF\n\nname=\xE5\x80\xA4\ne=1"));
    EXPECT_THAT(runInspector({"show", path}).output, EndsWith("\nSettings: 2\n"
                                                              "  a=1\n"
                                                              "  name=\xE5\x80\xA4\n"
                                                              "Outside the settings: 17 bytes\n"));
    EXPECT_EQ(runForJSON({"show", path}, SAME).at("bytesOutsideSettings"), 17);
}

TEST_F(EficonfShowTest, doesNotCallAnEmptyPayloadOpaque) {
    const std::string path = write("a.dat", makeSample(""));
    EXPECT_THAT(runInspector({"show", path}).output, EndsWith("\nSettings: none\n"));
}

TEST_F(EficonfShowTest, showsSeveralFiles) {
    const std::string usable = write("a.dat", makeSample("a=1\n"));
    const std::string other = write("other", "abc");
    const ChildResult both = runInspector({"show", usable, other, usable});
    EXPECT_EQ(both.exitStatus, NOT_USABLE);
    const std::string first = runInspector({"show", usable}).output;
    EXPECT_EQ(both.output, first + "\n" + runInspector({"show", other}).output + "\n" + first);
    EXPECT_EQ(runInspector({"show", usable, usable}).exitStatus, SAME);
    const json reports = runForJSON({"show", usable, other}, NOT_USABLE);
    EXPECT_EQ(reports,
              json({runForJSON({"show", usable}, SAME), runForJSON({"show", other}, NOT_USABLE)}));
}

TEST_F(EficonfShowTest, saysWhyAFileIsNotUsable) {
    const std::string sound = readText(write("a.dat", makeSample("abc")));
    const auto reasonOf = [this](const std::string& bytes) {
        const std::string path = write("b.dat", bytes);
        const std::string reason = runForJSON({"show", path}, NOT_USABLE).at("reason");
        EXPECT_THAT(runInspector({"show", path}).output,
                    HasSubstr(std::string("Verdict: ") + NOT_A_FILE_OF_OURS + " (" + reason + ")"));
        return reason;
    };
    EXPECT_EQ(reasonOf(""), "the file is empty");
    EXPECT_EQ(reasonOf("abc"), "it does not begin like a configuration file");
    EXPECT_EQ(reasonOf(std::string(100, 'x')), "it does not begin like a configuration file");
    EXPECT_EQ(reasonOf(sound.substr(0, 27)), "it ends within its header");
    EXPECT_EQ(reasonOf(sound.substr(0, sound.size() - 1)),
              "it is cut off: by its header, it has 1 byte more");
    EXPECT_EQ(reasonOf(sound + "xy"), "2 bytes follow its end");
    std::string changed = sound;
    changed[30] = 'x';
    EXPECT_EQ(reasonOf(changed), "its checksum does not match: some of its bytes were changed");
    changed = sound;
    changed[11] = 2;
    EXPECT_EQ(reasonOf(changed), "its layout is of revision 2, not 1");
}

TEST_F(EficonfShowTest, acceptsOptionBeforeFile) {
    const std::string path = write("a.dat", makeSample("abc"));
    const ChildResult result = runInspector({"show", "--json", path});
    EXPECT_EQ(result.exitStatus, SAME);
    EXPECT_EQ(json::parse(result.output), runForJSON({"show", path}, SAME));
}

TEST_F(EficonfShowTest, showsMinimalFile) {
    const Host::ConfigurationFile empty;
    const json report = runForJSON({"show", write("a.dat", empty)}, SAME);
    EXPECT_EQ(report.at("size"), 32);
    EXPECT_EQ(report.at("savedOn"), "1970-01-01T00:00:00Z");
    EXPECT_EQ(report.at("partition"), 0);
    EXPECT_EQ(report.at("partitionName"), "");
    EXPECT_EQ(report.at("biosVersion"), "");
    EXPECT_EQ(report.at("payloadSize"), 0);
    EXPECT_EQ(report.at("payloadSha256"), SUM_OF_NOTHING);
}

TEST_F(EficonfShowTest, showsLargestNumbers) {
    Host::ConfigurationFile file = makeSample("");
    file.saveTime = 0xFFFFFFFF;
    file.partition = 0xFFFFFFFF;
    const json report = runForJSON({"show", write("a.dat", file)}, SAME);
    EXPECT_EQ(report.at("savedOn"), "2106-02-07T06:28:15Z");
    EXPECT_EQ(report.at("partition"), 4294967295U);
}

TEST_F(EficonfShowTest, showsStandardHashes) {
    EXPECT_EQ(runForJSON({"show", write("abc", "abc")}, NOT_USABLE).at("sha256"), SUM_OF_ABC);
    const json empty = runForJSON({"show", write("empty", "")}, NOT_USABLE);
    EXPECT_EQ(empty.at("sha256"), SUM_OF_NOTHING);
    EXPECT_EQ(empty.at("size"), 0);
    EXPECT_EQ(
        runForJSON({"show", write("many", std::string(1000000, 'a'))}, NOT_USABLE).at("sha256"),
        "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST_F(EficonfShowTest, reportsForeignFile) {
    for (const std::string& bytes :
         {std::string(), std::string("abc"), std::string(1000, '\0'), std::string(1000, 'x')}) {
        EXPECT_EQ(verdictOn(write("other", bytes)), NOT_A_FILE_OF_OURS);
    }
    const ChildResult result = runInspector({"show", write("abc", "abc")});
    EXPECT_THAT(linesOf(result.output),
                ElementsAre("File: " + at("abc"),
                            std::string("Verdict: ") + NOT_A_FILE_OF_OURS +
                                " (it does not begin like a configuration file)",
                            "Size: 3 bytes", "SHA-256: " + SUM_OF_ABC));
}

TEST_F(EficonfShowTest, detectsDamageAnywhere) {
    const std::string sound = readText(write("a.dat", makeSample("abc")));
    for (std::size_t place = 0; place < sound.size(); ++place) {
        std::string damaged = sound;
        damaged[place] = static_cast<char>(damaged[place] ^ 1);
        const ChildResult result = runInspector({"show", write("b.dat", damaged)});
        EXPECT_EQ(result.exitStatus, NOT_USABLE) << place;
        EXPECT_THAT(result.output, HasSubstr(NOT_A_FILE_OF_OURS));
        EXPECT_THAT(result.output, Not(HasSubstr("BIOS version")));
    }
    for (const std::size_t length :
         {std::size_t{1}, std::size_t{27}, std::size_t{31}, sound.size() - 1}) {
        EXPECT_EQ(verdictOn(write("cut.dat", sound.substr(0, length))), NOT_A_FILE_OF_OURS);
    }
    EXPECT_EQ(verdictOn(write("long.dat", sound + "x")), NOT_A_FILE_OF_OURS);
}

TEST_F(EficonfShowTest, acceptsFileUpToLimit) {
    Host::ConfigurationFile file = makeSample("");
    file.payload.resize(LARGEST_CONFIGURATION_FILE - encode(file).size(), 'p');
    const json report = runForJSON({"show", write("a.dat", file)}, SAME);
    EXPECT_EQ(report.at("size"), LARGEST_CONFIGURATION_FILE);
    EXPECT_EQ(report.at("payloadSize"), file.payload.size());
}

TEST_F(EficonfShowTest, reportsTooLargeFile) {
    const std::string path = write("a", std::string(LARGEST_CONFIGURATION_FILE + 1, 'x'));
    EXPECT_EQ(verdictOn(path), "too large");
    const json report = runForJSON({"show", path}, NOT_USABLE);
    EXPECT_EQ(report.at("size"), LARGEST_CONFIGURATION_FILE + 1);
    EXPECT_TRUE(report.contains("sha256"));
    EXPECT_EQ(report.at("reason"), "a configuration file has at most 393216 bytes");
}

TEST_F(EficonfShowTest, doesNotReadHugeFile) {
    const std::string path = write("a", "");
    std::filesystem::resize_file(path, 64 * 1024 * 1024 + 1);
    EXPECT_EQ(verdictOn(path), "too large");
    const json report = runForJSON({"show", path}, NOT_USABLE);
    EXPECT_FALSE(report.contains("size"));
    EXPECT_FALSE(report.contains("sha256"));
    EXPECT_EQ(report.at("reason"), "a configuration file has at most 393216 bytes");
}

TEST_F(EficonfShowTest, reportsWhyFileCannotBeRead) {
    EXPECT_EQ(verdictOn(at("missing")), "not readable");
    EXPECT_THAT(runInspector({"show", at("missing")}).output,
                HasSubstr("not readable (No such file or directory)\n"));
    EXPECT_EQ(verdictOn(at("")), "not readable");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(verdictOn(at("pipe")), "not readable");
    ASSERT_EQ(::symlink(write("a.dat", makeSample("")).c_str(), at("link").c_str()), 0);
    EXPECT_EQ(verdictOn(at("link")), "not readable");
    EXPECT_EQ(runForJSON({"show", at("pipe")}, NOT_USABLE).at("reason"), "not a regular file");
    EXPECT_EQ(runForJSON({"show", at("")}, NOT_USABLE).at("reason"), "not a regular file");
    EXPECT_EQ(runForJSON({"show", at("link")}, NOT_USABLE).at("reason"),
              "a symbolic link: name the file that it points to");
    const json missing = runForJSON({"show", at("missing")}, NOT_USABLE);
    EXPECT_FALSE(missing.contains("size"));
    EXPECT_EQ(missing.at("reason"), "No such file or directory");
    const json usable = runForJSON({"show", write("b.dat", makeSample(""))}, SAME);
    EXPECT_FALSE(usable.contains("reason"));
}

TEST_F(EficonfShowTest, printsNoControlCharacters) {
    Host::ConfigurationFile file = makeSample("");
    file.version = std::string("1\0\x1B[2J", 6);
    file.partitionName =
        "a\nSize: 0 bytes\r\t\x7F\xC2\x80\xC2\x9B"
        "2J\xC2\xA0\xC3\x80";
    const std::string output = runInspector({"show", write("a.dat", file)}).output;
    EXPECT_THAT(output, HasSubstr("\nBIOS version: 1??[2J\n"));
    EXPECT_THAT(output, HasSubstr("\nPartition name: a?Size: 0 bytes?????2J\xC2\xA0\xC3\x80\n"));
    EXPECT_EQ(linesOf(output).size(), 12U);
    EXPECT_THAT(runInspector({"show", at("no\x1B[2Jsuch")}).output, HasSubstr("no?[2Jsuch\n"));
}

TEST_F(EficonfShowTest, keepsEveryTextInJSON) {
    for (const std::string& text : hostileTexts()) {
        Host::ConfigurationFile file = makeSample("");
        file.partitionName = text;
        file.version = text;
        const json report = runForJSON({"show", write("a.dat", file)}, SAME);
        if (text.starts_with("not UTF-8")) {
            EXPECT_EQ(report.at("partitionName"),
                      "not UTF-8: \xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
        } else {
            EXPECT_EQ(report.at("partitionName"), text);
            EXPECT_EQ(report.at("biosVersion"), text);
        }
    }
}

TEST_F(EficonfShowTest, reportsWrongUsage) {
    const std::string path = write("a.dat", makeSample(""));
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{},
                                               {path},
                                               {"unknown", path},
                                               {"show"},
                                               {"show", "--json"},
                                               {"show", path, "--xml"},
                                               {"compare"},
                                               {"compare", path},
                                               {"compare", path, path, path},
                                               {"show", path, "--ignore-time"},
                                               {"compare", path, path, "--ignore-time=x"},
                                               {"compare", path, path, "--ignore"},
                                               {"--json", "show", path}}) {
        const ChildResult result = runInspector(words);
        EXPECT_EQ(result.exitStatus, USAGE) << testing::PrintToString(words);
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors, "");
    }
}

TEST_F(EficonfShowTest, helpListsExitStatuses) {
    const ChildResult result = runInspector({"--help"});
    EXPECT_EQ(result.exitStatus, SAME);
    EXPECT_THAT(result.output, HasSubstr("show"));
    EXPECT_THAT(result.output, HasSubstr("compare"));
    EXPECT_THAT(result.output, HasSubstr("3 wrong usage"));
    for (const char* command : {"show", "compare"}) {
        const ChildResult help = runInspector({command, "--help"});
        EXPECT_EQ(help.exitStatus, SAME);
        EXPECT_THAT(help.output, HasSubstr("--json"));
        EXPECT_THAT(help.output, HasSubstr("4 the answer could not be printed"));
    }
    EXPECT_THAT(runInspector({"compare", "--help"}).output, HasSubstr("--ignore-time"));
}

TEST_F(EficonfShowTest, reportsFailureToPrint) {
    const std::string path = write("a.dat", makeSample("x"));
    for (const std::string& words :
         {"show " + path, "show --json " + path, "compare " + path + " " + path,
          std::string("--help"), std::string("show --help")}) {
        for (const auto& [output, reason] :
             {std::pair(" >/dev/full", "No space left on device"), {" >&-", "Bad file"}}) {
            const ChildResult result =
                runProgram({"/bin/sh", "-c", EFICONF + (" " + words) + output});
            EXPECT_EQ(result.exitStatus, NOT_PRINTED) << words << output;
            EXPECT_THAT(result.errors, HasSubstr("eficonf: the answer could not be printed: " +
                                                 std::string(reason)))
                << words << output;
        }
    }
}

TEST_F(EficonfShowTest, reportsClosedPipe) {
    const std::string path = write("a.dat", makeSample("x"));
    // The pipe's only reader closes before eficonf is started.
    const std::string script = "mkfifo " + at("pipe") + "; exec 3<>" + at("pipe") + " 4>" +
                               at("pipe") + " 3<&-; exec " + EFICONF + " show " + path + " >&4";
    const ChildResult result = runProgram({"/bin/sh", "-c", script});
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.exitStatus, NOT_PRINTED);
    EXPECT_EQ(result.errors, "eficonf: the answer could not be printed: Broken pipe\n");
}

}  // namespace VeskLib::Test
