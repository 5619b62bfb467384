#include "platform/host/html/messageLines.h"

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Host::printMessage;
using Host::splitMessage;
using testing::ElementsAre;

TEST(MessageLinesTest, aMessageIsSplitAtItsBreaks) {
    EXPECT_THAT(splitMessage("one"), ElementsAre("one"));
    EXPECT_THAT(splitMessage("one<br>two<br>three"), ElementsAre("one", "two", "three"));
    EXPECT_THAT(splitMessage(""), ElementsAre(""));
    EXPECT_THAT(splitMessage("<br>"), ElementsAre("", ""));
    EXPECT_THAT(splitMessage("one<br><br>two<br>"), ElementsAre("one", "", "two", ""));
}

TEST(MessageLinesTest, onlyTheBreakOfThePagesSplits) {
    EXPECT_THAT(splitMessage("a<BR>b<br/>c<br >d\ne<b"), ElementsAre("a<BR>b<br/>c<br >d\ne<b"));
}

TEST(MessageLinesTest, everyLineIsAnEscapedParagraph) {
    EXPECT_EQ(printedBy([] { printMessage("a & b<br>c"); }), "<p>a &amp; b</p><p>c</p>");
    for (const std::string& text : printableTexts()) {
        const std::string printed = printedBy([&text] { printMessage(text); });
        EXPECT_THAT(tagNamesOf(printed), ElementsAre("p", "/p"));
        EXPECT_EQ(textOf(printed), text);
    }
}

}  // namespace VeskLib::Test
