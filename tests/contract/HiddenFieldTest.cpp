#include <VeskLib/Gui/HiddenField.h>

#include "tests/contract/inputs.h"
#include "tests/support/hostileTexts.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::HiddenField;

namespace {

// Checks that the field is one hidden input with these attributes, and displays nothing.
void expectField(const std::string& name, const std::string& value, const std::string& form) {
    const HiddenField field(name, value, form);
    const std::string printed = printedHTML(field);
    ASSERT_EQ(inputsOf(field).size(), 1u) << printed;
    const Tag input = inputsOf(field)[0];
    EXPECT_EQ(attribute(input, "type"), "hidden");
    EXPECT_EQ(attribute(input, "name"), name);
    EXPECT_EQ(attribute(input, "value"), value);
    EXPECT_EQ(attribute(input, "form"), form);
    EXPECT_FALSE(input.attributes.contains("disabled"));
    EXPECT_THAT(textOf(printed), testing::MatchesRegex("[ \n]*"));
    EXPECT_EQ(tagNamesOf(printed), tagNamesOf(printedHTML(HiddenField("n", "v", "f"))));
}

}  // namespace

TEST(HiddenFieldTest, isOneFieldOfItsForm) {
    expectField("hidden_status", "BACKUP", "form_name");
}

TEST(HiddenFieldTest, canHaveEmptyValue) {
    expectField("message", "", "form_name");
}

TEST(HiddenFieldTest, escapesHostileTexts) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        expectField("name", text, "form");
        expectField(text, "value", "form");
        expectField("name", "value", text);
    }
}

TEST(HiddenFieldTest, isErrorReturnsFalse) {
    EXPECT_FALSE(HiddenField("name", "value", "form").isError());
}

}  // namespace VeskLib::Test
