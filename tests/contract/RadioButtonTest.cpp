#include <VeskLib/Gui/RadioButton.h>

#include "tests/contract/inputs.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::RadioButton;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RadioButtonTest, choiceIsOneButtonOfItsGroupAndForm) {
    RadioButton group("radio_button", "", "form_name", &ALLOWED);
    group.add("0", "", false, false);
    const std::vector<Tag> inputs = inputsOf(group);
    ASSERT_THAT(inputs, SizeIs(1));
    EXPECT_EQ(attribute(inputs[0], "id"), "radio_button_0");
    EXPECT_EQ(attribute(inputs[0], "type"), "radio");
    EXPECT_EQ(attribute(inputs[0], "name"), "radio_button");
    EXPECT_EQ(attribute(inputs[0], "value"), "0");
    EXPECT_EQ(attribute(inputs[0], "form"), "form_name");
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_FALSE(inputs[0].attributes.contains("disabled"));
}

TEST(RadioButtonTest, disablesUnlessDisplayModeIsTwo) {
    for (const int mode : {-1, 0, 1, 3, 102}) {
        SCOPED_TRACE(mode);
        RadioButton group("name", "", "form", &mode);
        group.add("0", "", false, false);
        group.add("1", "", true, false);
        for (const Tag& input : inputsOf(group)) {
            EXPECT_TRUE(input.attributes.contains("disabled"));
        }
    }
}

TEST(RadioButtonTest, readsDisplayModeWhenPrinting) {
    int mode = 0;
    RadioButton group("name", "", "form", &mode);
    group.add("0", "", false, false);
    EXPECT_TRUE(inputsOf(group).at(0).attributes.contains("disabled"));
    mode = 2;
    EXPECT_FALSE(inputsOf(group).at(0).attributes.contains("disabled"));
}

TEST(RadioButtonTest, printsChoicesInOrderWithTheirStates) {
    RadioButton group("name", "", "form", &ALLOWED);
    group.add("7", "", false, true);
    group.add("3", "", true, false);
    group.add("5", "", false, false);
    const std::vector<Tag> inputs = inputsOf(group);
    ASSERT_THAT(inputs, SizeIs(3));
    EXPECT_EQ(attribute(inputs[0], "value"), "7");
    EXPECT_EQ(attribute(inputs[1], "value"), "3");
    EXPECT_EQ(attribute(inputs[2], "value"), "5");
    EXPECT_TRUE(inputs[0].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_TRUE(inputs[1].attributes.contains("checked"));
    EXPECT_FALSE(inputs[1].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[2].attributes.contains("disabled"));
}

TEST(RadioButtonTest, printsNoButtonWithoutChoices) {
    EXPECT_THAT(inputsOf(RadioButton("name", "title", "form", &ALLOWED)), IsEmpty());
}

TEST(RadioButtonTest, labelBelongsToItsChoice) {
    RadioButton group("name", "", "form", &ALLOWED);
    group.add("0", "Partition 0", false, false);
    EXPECT_THAT(textOf(printedHTML(group)), HasSubstr("Partition 0"));
    EXPECT_TRUE(hasLabel(printedHTML(group))) << printedHTML(group);
}

TEST(RadioButtonTest, escapesHostileTexts) {
    RadioButton harmless("name", "title", "form", &ALLOWED);
    harmless.add("value", "label", false, false);
    const std::vector<std::string> tags = tagNamesOf(printedHTML(harmless));
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        RadioButton group(text, text, text, &ALLOWED);
        group.add(text, text, false, false);
        const std::string printed = printedHTML(group);
        EXPECT_EQ(tagNamesOf(printed), tags) << printed;
        EXPECT_THAT(textOf(printed), HasSubstr(text));
        const std::map<std::string, std::string> attributes = inputsOf(group).at(0).attributes;
        EXPECT_EQ(attributes.size(), inputsOf(harmless).at(0).attributes.size());
        EXPECT_EQ(attributes.at("name"), text);
        EXPECT_EQ(attributes.at("value"), text);
        EXPECT_EQ(attributes.at("form"), text);
    }
}

TEST(RadioButtonTest, isErrorReturnsFalse) {
    EXPECT_FALSE(RadioButton("name", "", "form", &ALLOWED).isError());
}

}  // namespace VeskLib::Test
