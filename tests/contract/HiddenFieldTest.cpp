#include <VeskLib/Gui/HiddenField.h>

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::HiddenField;
using Attributes = std::map<std::string, std::string>;

namespace {

// The one tag that the field prints, and nothing beside it.
Attributes attributesOf(const HiddenField& field) {
    const std::string printed = printedHTML(field);
    EXPECT_THAT(tagNamesOf(printed), testing::ElementsAre("input")) << printed;
    EXPECT_EQ(textOf(printed), "");
    return tagsOf(printed).at(0).attributes;
}

Attributes expected(const std::string& name, const std::string& value, const std::string& form) {
    return {{"type", "hidden"}, {"name", name}, {"value", value}, {"form", form}};
}

}  // namespace

TEST(HiddenFieldTest, isOneFieldOfItsForm) {
    EXPECT_EQ(attributesOf(HiddenField("hidden_status", "BACKUP", "form_name")),
              expected("hidden_status", "BACKUP", "form_name"));
}

TEST(HiddenFieldTest, mayBeEmpty) {
    EXPECT_EQ(attributesOf(HiddenField("message", "", "form_name")),
              expected("message", "", "form_name"));
}

TEST(HiddenFieldTest, hostileTextsStayInTheirAttributes) {
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        EXPECT_EQ(attributesOf(HiddenField("name", text, "form")), expected("name", text, "form"));
        EXPECT_EQ(attributesOf(HiddenField(text, "value", "form")),
                  expected(text, "value", "form"));
        EXPECT_EQ(attributesOf(HiddenField("name", "value", text)),
                  expected("name", "value", text));
    }
}

TEST(HiddenFieldTest, isNeverAnError) {
    EXPECT_FALSE(HiddenField("name", "value", "form").isError());
}

}  // namespace VeskLib::Test
