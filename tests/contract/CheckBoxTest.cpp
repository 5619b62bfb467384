#include <VeskLib/Gui/CheckBox.h>

#include "tests/contract/inputs.h"
#include "tests/contract/platformSpecifics.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::CheckBox;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// A partition's box in a row of the selection page.
TEST(CheckBoxTest, boxIsOneFieldOfItsForm) {
    CheckBox boxes("", "", "form_name", &ALLOWED);
    boxes.add("pid3", "3", "", "", false, false);
    const std::vector<Tag> inputs = inputsOf(boxes);
    ASSERT_THAT(inputs, SizeIs(1));
    EXPECT_EQ(attribute(inputs[0], "type"), "checkbox");
    EXPECT_EQ(attribute(inputs[0], "id"), "pid3");
    EXPECT_EQ(attribute(inputs[0], "name"), "pid3");
    EXPECT_EQ(attribute(inputs[0], "value"), "3");
    EXPECT_EQ(attribute(inputs[0], "form"), "form_name");
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_FALSE(inputs[0].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[0].attributes.contains(clickAttribute()));
}

// The box that selects all others.
TEST(CheckBoxTest, printsLabelEmptyValueAndClickHandler) {
    CheckBox boxes("", "", "form_name", &ALLOWED);
    boxes.add("check_box", "", "Select all", "", false, false);
    boxes.setClickHandler("switchField()");
    EXPECT_THAT(textOf(printedHTML(boxes)), HasSubstr("Select all"));
    const std::vector<Tag> inputs = inputsOf(boxes);
    ASSERT_THAT(inputs, SizeIs(1));
    EXPECT_EQ(attribute(inputs[0], "name"), "check_box");
    EXPECT_EQ(attribute(inputs[0], "value"), "");
    EXPECT_THAT(attribute(inputs[0], clickAttribute()), HasSubstr("switchField()"));
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
}

TEST(CheckBoxTest, disablesUnlessDisplayModeIsTwo) {
    for (const int mode : {-1, 0, 1, 3, 102}) {
        SCOPED_TRACE(mode);
        CheckBox boxes("", "", "form", &mode);
        boxes.add("pid0", "0", "", "", false, false);
        boxes.add("pid1", "1", "", "", true, false);
        for (const Tag& input : inputsOf(boxes)) {
            EXPECT_TRUE(input.attributes.contains("disabled"));
        }
    }
}

TEST(CheckBoxTest, readsDisplayModeWhenPrinting) {
    int mode = 0;
    CheckBox boxes("", "", "form", &mode);
    boxes.add("pid0", "0", "", "", false, false);
    EXPECT_TRUE(inputsOf(boxes).at(0).attributes.contains("disabled"));
    mode = 2;
    EXPECT_FALSE(inputsOf(boxes).at(0).attributes.contains("disabled"));
}

TEST(CheckBoxTest, printsBoxesInOrderWithTheirStates) {
    CheckBox boxes("", "", "form", &ALLOWED);
    boxes.add("pid7", "7", "", "", false, true);
    boxes.add("pid3", "3", "", "", true, false);
    boxes.add("pid5", "5", "", "", true, false);
    const std::vector<Tag> inputs = inputsOf(boxes);
    ASSERT_THAT(inputs, SizeIs(3));
    EXPECT_EQ(attribute(inputs[0], "name"), "pid7");
    EXPECT_EQ(attribute(inputs[1], "name"), "pid3");
    EXPECT_EQ(attribute(inputs[2], "name"), "pid5");
    EXPECT_TRUE(inputs[0].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_FALSE(inputs[1].attributes.contains("disabled"));
    EXPECT_TRUE(inputs[1].attributes.contains("checked"));
    EXPECT_TRUE(inputs[2].attributes.contains("checked"));
}

TEST(CheckBoxTest, labelBelongsToItsBox) {
    CheckBox boxes("", "", "form", &ALLOWED);
    boxes.add("pid0", "0", "Partition 0", "", false, false);
    EXPECT_TRUE(hasLabel(printedHTML(boxes))) << printedHTML(boxes);
    EXPECT_THAT(textOf(printedHTML(boxes)), HasSubstr("Partition 0"));
}

TEST(CheckBoxTest, printsNoInputWithoutBoxes) {
    EXPECT_THAT(inputsOf(CheckBox("title", "", "form", &ALLOWED)), IsEmpty());
}

TEST(CheckBoxTest, escapesHostileTexts) {
    CheckBox harmless("title", "description", "form", &ALLOWED);
    harmless.add("name", "value", "label", "hint", false, false);
    harmless.setClickHandler("call()");
    const std::vector<std::string> tags = tagNamesOf(printedHTML(harmless));
    const std::size_t attributeCount = inputsOf(harmless).at(0).attributes.size();
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        CheckBox boxes(text, text, text, &ALLOWED);
        boxes.add(text, text, text, text, false, false);
        boxes.setClickHandler("call()");
        const std::string printed = printedHTML(boxes);
        EXPECT_EQ(tagNamesOf(printed), tags) << printed;
        EXPECT_THAT(textOf(printed), HasSubstr(text));
        const std::map<std::string, std::string> attributes = inputsOf(boxes).at(0).attributes;
        EXPECT_EQ(attributes.size(), attributeCount);
        EXPECT_EQ(attributes.at("name"), text);
        EXPECT_EQ(attributes.at("value"), text);
        EXPECT_EQ(attributes.at("form"), text);
    }
}

TEST(CheckBoxTest, isErrorReturnsFalse) {
    EXPECT_FALSE(CheckBox("", "", "form", &ALLOWED).isError());
}

}  // namespace VeskLib::Test
