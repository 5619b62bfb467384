#include <VeskLib/Gui/CheckBox.h>

#include "tests/contract/inputs.h"
#include "tests/contract/platformSpecifics.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::CheckBox;
using testing::IsEmpty;
using testing::SizeIs;

// The box of a partition, as a row of the selection has it.
TEST(CheckBoxTest, aBoxIsOneFieldOfItsForm) {
    CheckBox boxes("", "", "form_name", &ALLOWED);
    boxes.add("pid3", "3", "", "", false, false);
    const std::string printed = printedHTML(boxes);
    EXPECT_EQ(textOf(printed), "");
    const std::vector<Tag> inputs = tagsOf(printed);
    ASSERT_THAT(inputs, SizeIs(1));
    EXPECT_EQ(inputs[0].name, "input");
    EXPECT_EQ(inputs[0].attributes.at("type"), "checkbox");
    EXPECT_EQ(inputs[0].attributes.at("name"), "pid3");
    EXPECT_EQ(inputs[0].attributes.at("value"), "3");
    EXPECT_EQ(inputs[0].attributes.at("form"), "form_name");
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_FALSE(inputs[0].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[0].attributes.contains(clickAttribute()));
}

// The box that ticks all the others.
TEST(CheckBoxTest, aBoxMayHaveALabelAnEmptyValueAndAClickHandler) {
    CheckBox boxes("", "", "form_name", &ALLOWED);
    boxes.add("check_box", "", "Select all", "", false, false);
    boxes.setClickHandler("switchField()");
    EXPECT_EQ(textOf(printedHTML(boxes)), "Select all");
    const std::vector<Tag> inputs = inputsOf(boxes);
    ASSERT_THAT(inputs, SizeIs(1));
    EXPECT_EQ(inputs[0].attributes.at("name"), "check_box");
    EXPECT_EQ(inputs[0].attributes.at("value"), "");
    EXPECT_EQ(inputs[0].attributes.at(clickAttribute()), "switchField()");
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
}

TEST(CheckBoxTest, everyDisplayModeButTwoDisables) {
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

TEST(CheckBoxTest, theDisplayModeIsLookedAtWhenPrinting) {
    int mode = 0;
    CheckBox boxes("", "", "form", &mode);
    boxes.add("pid0", "0", "", "", false, false);
    EXPECT_TRUE(inputsOf(boxes).at(0).attributes.contains("disabled"));
    mode = 2;
    EXPECT_FALSE(inputsOf(boxes).at(0).attributes.contains("disabled"));
}

TEST(CheckBoxTest, boxesStandInTheirOrderEachWithItsMarks) {
    CheckBox boxes("", "", "form", &ALLOWED);
    boxes.add("pid7", "7", "", "", false, true);
    boxes.add("pid3", "3", "", "", true, false);
    boxes.add("pid5", "5", "", "", true, false);
    const std::vector<Tag> inputs = inputsOf(boxes);
    ASSERT_THAT(inputs, SizeIs(3));
    EXPECT_EQ(inputs[0].attributes.at("name"), "pid7");
    EXPECT_EQ(inputs[1].attributes.at("name"), "pid3");
    EXPECT_EQ(inputs[2].attributes.at("name"), "pid5");
    EXPECT_TRUE(inputs[0].attributes.contains("disabled"));
    EXPECT_FALSE(inputs[0].attributes.contains("checked"));
    EXPECT_FALSE(inputs[1].attributes.contains("disabled"));
    EXPECT_TRUE(inputs[1].attributes.contains("checked"));
    EXPECT_TRUE(inputs[2].attributes.contains("checked"));
}

TEST(CheckBoxTest, aLabelBelongsToItsBox) {
    CheckBox boxes("", "", "form", &ALLOWED);
    boxes.add("pid0", "0", "Partition 0", "", false, false);
    const std::string printed = printedHTML(boxes);
    const std::vector<Tag> labels = tagsOf(printed, "label");
    ASSERT_THAT(labels, SizeIs(1));
    EXPECT_EQ(labels[0].attributes.at("for"), tagsOf(printed, "input").at(0).attributes.at("id"));
}

TEST(CheckBoxTest, withoutBoxesThereIsNone) {
    EXPECT_THAT(inputsOf(CheckBox("title", "", "form", &ALLOWED)), IsEmpty());
}

TEST(CheckBoxTest, hostileTextsStayInTheirPlaces) {
    CheckBox harmless("title", "description", "form", &ALLOWED);
    harmless.add("name", "value", "label", "hint", false, false);
    harmless.setClickHandler("call()");
    const std::vector<std::string> tags = tagNamesOf(printedHTML(harmless));
    const std::size_t attributeCount = inputsOf(harmless).at(0).attributes.size();
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        CheckBox boxes(text, text, text, &ALLOWED);
        boxes.add(text, text, text, text, false, false);
        boxes.setClickHandler(text);
        const std::string printed = printedHTML(boxes);
        EXPECT_EQ(tagNamesOf(printed), tags) << printed;
        EXPECT_EQ(textOf(printed), text);
        const std::map<std::string, std::string> attributes = inputsOf(boxes).at(0).attributes;
        EXPECT_EQ(attributes.size(), attributeCount);
        EXPECT_EQ(attributes.at("name"), text);
        EXPECT_EQ(attributes.at("value"), text);
        EXPECT_EQ(attributes.at("form"), text);
        EXPECT_EQ(attributes.at(clickAttribute()), text);
    }
}

TEST(CheckBoxTest, isNeverAnError) {
    EXPECT_FALSE(CheckBox("", "", "form", &ALLOWED).isError());
}

}  // namespace VeskLib::Test
