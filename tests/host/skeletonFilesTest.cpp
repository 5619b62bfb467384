#include "platform/host/html/Skeleton.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/scriptStrings.h"

#include <VeskLib/Gui/TextString.h>

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>

// Tests of the skeletons as they are shipped.

namespace VeskLib::Test {

using Gui::TextString;
using Host::Skeleton;

namespace {

const std::string PROGRAM = PROGRAM_SKELETONS;
const std::string PLATFORM = PLATFORM_SKELETONS;

// The number of places of each component, by name.
using Places = std::map<std::string, int>;

Places placesIn(const std::string& path) {
    Places places;
    const Skeleton skeleton(readText(path));
    for (const Skeleton::Piece& piece : skeleton.getPieces()) {
        if (piece.kind == Skeleton::Kind::COMPONENT) {
            ++places[std::string(piece.text)];
        }
    }
    return places;
}

// Expects each component in at least as many places as given.
void expectPlaces(const std::string& path, const Places& expected) {
    const Places places = placesIn(path);
    for (const auto& [name, count] : expected) {
        const auto found = places.find(name);
        EXPECT_GE(found == places.end() ? 0 : found->second, count) << name << " in " << path;
    }
}

// Returns the printed page without its scripts.
std::string withoutScripts(std::string printed) {
    for (const std::string& script : scriptsOf(printed)) {
        printed.erase(printed.find(script), script.size());
    }
    return printed;
}

// Prints a skeleton with these texts as components, which are not escaped, and returns the output.
std::string printFile(const std::string& path, const std::map<std::string, std::string>& texts) {
    const ChildResult result = runInChild([&] {
        std::map<std::string, std::unique_ptr<TextString>> owned;
        std::map<std::string, Gui::HTMLComponent*> components;
        for (const auto& [name, text] : texts) {
            owned[name] = std::make_unique<TextString>(text, false, true);
            components[name] = owned[name].get();
        }
        Skeleton(readText(path)).print(components);
        return 0;
    });
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

std::string printBackupPage(const std::string& filepath) {
    return printFile(PROGRAM + "/skeleton_efi_backup.txt",
                     {{"filepath", filepath}, {"onload_function", "downloadFunction()"}});
}

}  // namespace

TEST(SkeletonFilesTest, shellPlacesDispatcherComponents) {
    expectPlaces(PLATFORM + "/skeleton_shell.txt",
                 {{"body", 1}, {"css", 1}, {"java_script", 1}, {"meta_frameid", 1}, {"title", 1}});
}

// Includes the components of the combined page, which shares the skeleton.
TEST(SkeletonFilesTest, backupSkeletonPlacesEveryComponent) {
    expectPlaces(PROGRAM + "/skeleton_efi_backup.txt", {{"onload_function", 1},
                                                        {"form_action", 1},
                                                        {"hidden_status", 1},
                                                        {"item_download", 3},
                                                        {"hidden_functionID", 1},
                                                        {"message", 2},
                                                        {"item_pid", 1},
                                                        {"item_part_name", 1},
                                                        {"table_pid", 1},
                                                        {"filepath", 3},
                                                        {"download", 1},
                                                        {"item_title", 1},
                                                        {"filename", 1},
                                                        {"install", 1},
                                                        {"hidden_procname", 1},
                                                        {"message0", 1},
                                                        {"information", 1}});
    expectPlaces(PROGRAM + "/skeleton_efi_backup_tbl.txt",
                 {{"radio_button", 1}, {"pid", 3}, {"part_name", 1}});
}

TEST(SkeletonFilesTest, uploadSkeletonPlacesEveryComponent) {
    expectPlaces(PROGRAM + "/skeleton_efi_rstr.txt", {{"onload_function", 1},
                                                      {"form_action", 1},
                                                      {"hidden_status", 1},
                                                      {"message", 1},
                                                      {"filename", 1},
                                                      {"hidden_functionID", 1},
                                                      {"hidden_procname", 1},
                                                      {"message0", 1}});
}

TEST(SkeletonFilesTest, selectionSkeletonPlacesEveryComponent) {
    expectPlaces(PROGRAM + "/skeleton_efi_rstr_slct.txt", {{"onload_function", 1},
                                                           {"form_action", 2},
                                                           {"hidden_status", 1},
                                                           {"status", 1},
                                                           {"message", 1},
                                                           {"information", 2},
                                                           {"tablepid", 1},
                                                           {"pid", 1},
                                                           {"part_name", 1},
                                                           {"item_date", 1},
                                                           {"date", 1},
                                                           {"item_version", 2},
                                                           {"version", 1},
                                                           {"filename", 1},
                                                           {"install", 1},
                                                           {"hidden_functionID", 1},
                                                           {"hidden_procname", 1},
                                                           {"restore", 1},
                                                           {"message0", 1},
                                                           {"message1", 1},
                                                           {"item_pid", 1},
                                                           {"item_part_name", 2},
                                                           {"check_box", 1},
                                                           {"table_pid", 1}});
    expectPlaces(PROGRAM + "/skeleton_efi_rstr_slct_tbl.txt",
                 {{"check_box", 1}, {"pid", 3}, {"part_name", 1}, {"version", 1}});
}

TEST(SkeletonFilesTest, errorPagePlacesTitleAndMessage) {
    expectPlaces(PLATFORM + "/skeleton_error.txt", {{"title", 1}, {"message", 1}});
}

// Any remainder of a mark contains a brace or a bar, and the markup itself contains neither.
TEST(SkeletonFilesTest, unfilledSkeletonPrintsNoPartOfAMark) {
    for (const char* folder : {PROGRAM_SKELETONS, PLATFORM_SKELETONS, WEB_SKELETONS}) {
        for (const std::string& path : pathsIn(folder)) {
            if (path.ends_with(".txt")) {
                const std::string printed = printFile(path, {});
                EXPECT_EQ(withoutScripts(printed).find_first_of("{}|"), std::string::npos) << path;
                for (const std::string& script : scriptsOf(printed)) {
                    EXPECT_EQ(withoutStrings(script).find("{{"), std::string::npos) << path;
                    EXPECT_EQ(withoutStrings(script).find("|script"), std::string::npos) << path;
                }
            }
        }
    }
}

TEST(SkeletonFilesTest, backupPageEscapesDownloadName) {
    const std::string link = "/common/download.cgi?functionID=5&filename=";
    const std::string harmless = printBackupPage(link + "partition0.dat");
    // The first script element loads a file.
    ASSERT_EQ(scriptsOf(harmless).size(), 2u);
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printBackupPage(link + text);
        EXPECT_EQ(tagNamesOf(printed), tagNamesOf(harmless));
        EXPECT_EQ(withoutStrings(scriptsOf(printed).at(1)),
                  withoutStrings(scriptsOf(harmless).at(1)));
        const std::vector<Tag> links = tagsOf(printed, "a");
        ASSERT_EQ(links.size(), 1u);
        EXPECT_EQ(links[0].attributes.at("href"), link + text);
        EXPECT_EQ(links[0].attributes.size(), 2u);
        EXPECT_THAT(textOf(printed), testing::HasSubstr(link + text));
    }
}

}  // namespace VeskLib::Test
