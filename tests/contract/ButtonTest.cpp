#include <VeskLib/Gui/Button.h>

#include "tests/contract/inputs.h"
#include "tests/contract/platformSpecifics.h"
#include "tests/support/hostileTexts.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::Button;
using testing::HasSubstr;

namespace {

// Returns the only button, a `button` or an `input` element.
Tag buttonOf(const Button& button) {
    const std::string printed = printedHTML(button);
    std::vector<Tag> buttons = tagsOf(printed, "button");
    const std::vector<Tag> inputs = tagsOf(printed, "input");
    buttons.insert(buttons.end(), inputs.begin(), inputs.end());
    EXPECT_EQ(buttons.size(), 1u) << printed;
    return buttons.empty() ? Tag() : buttons[0];
}

// Returns the button's visible label.
std::string labelOf(const Button& button) {
    const Tag tag = buttonOf(button);
    return tag.name == "input" ? attribute(tag, "value") : textOf(printedHTML(button));
}

}  // namespace

// The upload page's button.
TEST(ButtonTest, runsItsScriptWithoutSubmitting) {
    const Button button("install", "Upload", "form_name", 0, "\"uploadFunction()\"", false);
    EXPECT_THAT(labelOf(button), HasSubstr("Upload"));
    const Tag tag = buttonOf(button);
    EXPECT_EQ(attribute(tag, "type"), "button");
    EXPECT_EQ(attribute(tag, "id"), "install");
    EXPECT_EQ(attribute(tag, "name"), "install");
    EXPECT_EQ(attribute(tag, "form"), "form_name");
    EXPECT_THAT(attribute(tag, clickAttribute()), HasSubstr("uploadFunction()"));
    EXPECT_EQ(attribute(tag, clickAttribute()).find('"'), std::string::npos);
    EXPECT_FALSE(tag.attributes.contains("disabled"));
}

TEST(ButtonTest, canBeDisabled) {
    EXPECT_TRUE(
        buttonOf(Button("b", "B", "f", 0, "\"a()\"", true)).attributes.contains("disabled"));
}

TEST(ButtonTest, widthChangesNothingElse) {
    const Button button("install", "Upload", "form_name", 20, "\"uploadFunction()\"", false);
    EXPECT_THAT(labelOf(button), HasSubstr("Upload"));
    EXPECT_THAT(attribute(buttonOf(button), clickAttribute()), HasSubstr("uploadFunction()"));
    EXPECT_FALSE(buttonOf(button).attributes.contains("disabled"));
}

TEST(ButtonTest, escapesHostileTexts) {
    const Button harmless("name", "label", "form", 0, "\"call()\"", false);
    const std::vector<std::string> tags = tagNamesOf(printedHTML(harmless));
    const std::size_t attributeCount = buttonOf(harmless).attributes.size();
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const Button button(text, text, text, 0, "\"call()\"", false);
        EXPECT_EQ(tagNamesOf(printedHTML(button)), tags) << printedHTML(button);
        EXPECT_THAT(labelOf(button), HasSubstr(text));
        const Tag tag = buttonOf(button);
        EXPECT_EQ(tag.attributes.size(), attributeCount);
        EXPECT_EQ(attribute(tag, "name"), text);
        EXPECT_EQ(attribute(tag, "form"), text);
    }
}

TEST(ButtonTest, isErrorReturnsFalse) {
    EXPECT_FALSE(Button("b", "B", "f", 0, "\"a()\"", false).isError());
}

}  // namespace VeskLib::Test
