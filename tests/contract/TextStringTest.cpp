#include <VeskLib/Gui/TextString.h>

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::TextString;
using testing::IsEmpty;

TEST(TextStringTest, printsPlainTextUnchanged) {
    EXPECT_EQ(printedHTML(TextString("/default.css")), "/default.css");
    EXPECT_EQ(printedHTML(TextString("")), "");
}

TEST(TextStringTest, escapesHostileTexts) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printedHTML(TextString(text));
        EXPECT_THAT(tagsOf(printed), IsEmpty());
        EXPECT_EQ(printed.find_first_of("<>\"'"), std::string::npos) << printed;
        EXPECT_EQ(textOf(printed), text);
    }
}

TEST(TextStringTest, printsSameWithExplicitDefaults) {
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        EXPECT_EQ(printedHTML(TextString(text, false, false, 6)), printedHTML(TextString(text)));
    }
}

TEST(TextStringTest, doesNotEscapeTextThatIsReadyToPrint) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(printedHTML(TextString(text, false, true)), text);
    }
}

TEST(TextStringTest, escapesEmphasizedText) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printedHTML(TextString(text, true));
        EXPECT_EQ(textOf(printed), text);
        EXPECT_EQ(tagNamesOf(printed), tagNamesOf(printedHTML(TextString("harmless", true))));
        EXPECT_THAT(scriptsOf(printed), IsEmpty());
    }
}

TEST(TextStringTest, copiesItsText) {
    std::string text = "first";
    const TextString component(text);
    text = "second";
    EXPECT_EQ(printedHTML(component), "first");
}

TEST(TextStringTest, printsTheSameEveryTime) {
    const TextString component("a & b");
    EXPECT_EQ(printedHTML(component), printedHTML(component));
}

TEST(TextStringTest, isErrorReturnsFalse) {
    EXPECT_FALSE(TextString("text").isError());
}

}  // namespace VeskLib::Test
