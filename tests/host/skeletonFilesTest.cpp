#include "platform/host/html/Skeleton.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/scriptStrings.h"

#include <VeskLib/Gui/TextString.h>

#include <gmock/gmock.h>

#include <memory>
#include <set>

// The skeletons as they are shipped.

namespace VeskLib::Test {

using Gui::TextString;
using Host::Skeleton;
using testing::IsSupersetOf;

namespace {

const std::string PROGRAM = PROGRAM_SKELETONS;
const std::string PLATFORM = PLATFORM_SKELETONS;

std::set<std::string> namesPlacedBy(const std::string& path) {
    std::set<std::string> names;
    const Skeleton skeleton(readText(path));
    for (const Skeleton::Piece& piece : skeleton.getPieces()) {
        if (piece.kind == Skeleton::Kind::COMPONENT) {
            names.emplace(piece.text);
        }
    }
    return names;
}

// The skeleton as printed with these texts, each ready to print.
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

TEST(SkeletonFilesTest, theShellPlacesWhatTheDispatcherPutsIn) {
    EXPECT_THAT(namesPlacedBy(PLATFORM + "/skeleton_shell.txt"),
                IsSupersetOf({"body", "css", "java_script", "meta_frameid", "title"}));
}

TEST(SkeletonFilesTest, theBackupPagePlacesWhatItsPagePutsIn) {
    EXPECT_THAT(namesPlacedBy(PROGRAM + "/skeleton_efi_backup.txt"),
                IsSupersetOf({"onload_function", "form_action", "hidden_status", "item_download",
                              "hidden_functionID", "message", "item_pid", "item_part_name",
                              "table_pid", "filepath"}));
    EXPECT_THAT(namesPlacedBy(PROGRAM + "/skeleton_efi_backup_tbl.txt"),
                IsSupersetOf({"radio_button", "pid", "part_name"}));
}

TEST(SkeletonFilesTest, theErrorPagePlacesTitleAndMessage) {
    EXPECT_THAT(namesPlacedBy(PLATFORM + "/skeleton_error.txt"),
                IsSupersetOf({"title", "message"}));
}

TEST(SkeletonFilesTest, noSkeletonLeavesATraceOfWhatIsNotFilled) {
    for (const char* folder : {PROGRAM_SKELETONS, PLATFORM_SKELETONS, WEB_SKELETONS}) {
        for (const std::string& path : pathsIn(folder)) {
            SCOPED_TRACE(path);
            const std::string printed = printFile(path, {});
            EXPECT_EQ(printed.find("{{"), std::string::npos);
            EXPECT_EQ(printed.find("}}"), std::string::npos);
        }
    }
}

TEST(SkeletonFilesTest, aHostileDownloadNameStaysInItsPlacesOnTheBackupPage) {
    const std::string link = "/common/download.cgi?functionID=5&filename=";
    const std::string harmless = printBackupPage(link + "partition0.dat");
    // The first script is a file of its own.
    ASSERT_EQ(scriptsOf(harmless).size(), 2u);
    for (const std::string& text : hostileTexts()) {
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
