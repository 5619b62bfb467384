#include <VeskLib/Gui/Button.h>

#include "tests/contract/platformSpecifics.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::Button;
using testing::SizeIs;

namespace {

Tag buttonOf(const Button& button) {
    return tagsOf(printedHTML(button), "button").at(0);
}

}  // namespace

// The upload page's button.
TEST(ButtonTest, aButtonRunsItsScriptAndSubmitsNothing) {
    const Button button("install", "Upload", "form_name", 0, "\"uploadFunction()\"", false);
    const std::string printed = printedHTML(button);
    EXPECT_EQ(textOf(printed), "Upload");
    ASSERT_THAT(tagsOf(printed, "button"), SizeIs(1));
    const Tag tag = buttonOf(button);
    EXPECT_EQ(tag.attributes.at("type"), "button");
    EXPECT_EQ(tag.attributes.at("name"), "install");
    EXPECT_EQ(tag.attributes.at("form"), "form_name");
    EXPECT_EQ(tag.attributes.at(clickAttribute()), "uploadFunction()");
    EXPECT_FALSE(tag.attributes.contains("disabled"));
}

TEST(ButtonTest, aButtonMayBeDisabled) {
    EXPECT_TRUE(
        buttonOf(Button("b", "B", "f", 0, "\"a()\"", true)).attributes.contains("disabled"));
}

TEST(ButtonTest, aWidthChangesNothingElse) {
    const Button button("install", "Upload", "form_name", 20, "\"uploadFunction()\"", false);
    EXPECT_EQ(textOf(printedHTML(button)), "Upload");
    EXPECT_EQ(buttonOf(button).attributes.at(clickAttribute()), "uploadFunction()");
    EXPECT_FALSE(buttonOf(button).attributes.contains("disabled"));
}

TEST(ButtonTest, hostileTextsStayInTheirPlaces) {
    const Button harmless("name", "label", "form", 0, "\"call()\"", false);
    const std::vector<std::string> tags = tagNamesOf(printedHTML(harmless));
    const std::size_t attributeCount = buttonOf(harmless).attributes.size();
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        const Button button(text, text, text, 0, "\"" + text + "\"", false);
        const std::string printed = printedHTML(button);
        EXPECT_EQ(tagNamesOf(printed), tags) << printed;
        EXPECT_EQ(textOf(printed), text);
        const Tag tag = buttonOf(button);
        EXPECT_EQ(tag.attributes.size(), attributeCount);
        EXPECT_EQ(tag.attributes.at("name"), text);
        EXPECT_EQ(tag.attributes.at("form"), text);
        EXPECT_EQ(tag.attributes.at(clickAttribute()), text);
    }
}

TEST(ButtonTest, isNeverAnError) {
    EXPECT_FALSE(Button("b", "B", "f", 0, "\"a()\"", false).isError());
}

}  // namespace VeskLib::Test
