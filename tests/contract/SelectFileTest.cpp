#include <VeskLib/Gui/SelectFile.h>

#include "tests/contract/inputs.h"
#include "tests/support/hostileTexts.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::SelectFile;
using testing::SizeIs;

// The upload page's selector.
TEST(SelectFileTest, isOneFileFieldOfItsForm) {
    const std::vector<Tag> tags = inputsOf(SelectFile("filename", "", "form_name", 70, 0));
    ASSERT_THAT(tags, SizeIs(1));
    EXPECT_EQ(attribute(tags[0], "id"), "filename");
    EXPECT_EQ(attribute(tags[0], "type"), "file");
    EXPECT_EQ(attribute(tags[0], "name"), "filename");
    EXPECT_EQ(attribute(tags[0], "form"), "form_name");
    EXPECT_FALSE(tags[0].attributes.contains("accept"));
    EXPECT_FALSE(tags[0].attributes.contains("multiple"));
    EXPECT_FALSE(tags[0].attributes.contains("disabled"));
}

TEST(SelectFileTest, printsAcceptAttribute) {
    const std::string printed = printedHTML(SelectFile("filename", ".dat", "form", 70, 0));
    EXPECT_EQ(tagsOf(printed, "input").at(0).attributes.at("accept"), ".dat");
}

TEST(SelectFileTest, escapesHostileTexts) {
    const SelectFile harmlessField("n", "a", "f", 70, 0);
    const std::vector<Tag> harmless = inputsOf(harmlessField);
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printedHTML(SelectFile(text, text, text, 70, 0));
        EXPECT_EQ(tagNamesOf(printed), tagNamesOf(printedHTML(harmlessField))) << printed;
        const std::vector<Tag> tags = tagsOf(printed, "input");
        ASSERT_EQ(tags.size(), 1u) << printed;
        EXPECT_EQ(tags.at(0).attributes.size(), harmless.at(0).attributes.size());
        EXPECT_EQ(tags.at(0).attributes.at("name"), text);
        EXPECT_EQ(tags.at(0).attributes.at("accept"), text);
        EXPECT_EQ(tags.at(0).attributes.at("form"), text);
    }
}

TEST(SelectFileTest, isErrorReturnsFalse) {
    EXPECT_FALSE(SelectFile("filename", "", "form", 70, 0).isError());
}

}  // namespace VeskLib::Test
