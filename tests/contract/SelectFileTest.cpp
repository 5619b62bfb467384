#include <VeskLib/Gui/SelectFile.h>

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::SelectFile;
using testing::SizeIs;

// The upload page's selector.
TEST(SelectFileTest, aSelectorIsOneFileFieldOfItsForm) {
    const std::string printed = printedHTML(SelectFile("filename", "", "form_name", 70, 0));
    EXPECT_EQ(textOf(printed), "");
    const std::vector<Tag> tags = tagsOf(printed);
    ASSERT_THAT(tags, SizeIs(1));
    EXPECT_EQ(tags[0].name, "input");
    EXPECT_EQ(tags[0].attributes.at("type"), "file");
    EXPECT_EQ(tags[0].attributes.at("name"), "filename");
    EXPECT_EQ(tags[0].attributes.at("form"), "form_name");
    EXPECT_FALSE(tags[0].attributes.contains("accept"));
    EXPECT_FALSE(tags[0].attributes.contains("multiple"));
    EXPECT_FALSE(tags[0].attributes.contains("disabled"));
}

TEST(SelectFileTest, aSelectorMayOfferSomeKindsOfFilesFirst) {
    const std::string printed = printedHTML(SelectFile("filename", ".dat", "form", 70, 0));
    EXPECT_EQ(tagsOf(printed, "input").at(0).attributes.at("accept"), ".dat");
}

TEST(SelectFileTest, hostileTextsStayInTheirPlaces) {
    const std::vector<Tag> harmless = tagsOf(printedHTML(SelectFile("n", "a", "f", 70, 0)));
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printedHTML(SelectFile(text, text, text, 70, 0));
        EXPECT_EQ(textOf(printed), "");
        const std::vector<Tag> tags = tagsOf(printed);
        ASSERT_EQ(tags.size(), harmless.size()) << printed;
        EXPECT_EQ(tags.at(0).attributes.size(), harmless.at(0).attributes.size());
        EXPECT_EQ(tags.at(0).attributes.at("name"), text);
        EXPECT_EQ(tags.at(0).attributes.at("accept"), text);
        EXPECT_EQ(tags.at(0).attributes.at("form"), text);
    }
}

TEST(SelectFileTest, isNeverAnError) {
    EXPECT_FALSE(SelectFile("filename", "", "form", 70, 0).isError());
}

}  // namespace VeskLib::Test
