#include "platform/host/html/messageLines.h"

#include "platform/host/base/RefusalDetails.h"
#include "platform/host/text/issuedTexts.h"
#include "tests/host/printSkeleton.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Host::printMessage;
using Host::splitMessage;
using testing::ElementsAre;

TEST(MessageLinesTest, splitsMessageAtBreaks) {
    EXPECT_THAT(splitMessage("one"), ElementsAre("one"));
    EXPECT_THAT(splitMessage("one<br>two<br>three"), ElementsAre("one", "two", "three"));
    EXPECT_THAT(splitMessage(""), ElementsAre(""));
    EXPECT_THAT(splitMessage("<br>"), ElementsAre("", ""));
    EXPECT_THAT(splitMessage("one<br><br>two<br>"), ElementsAre("one", "", "two", ""));
}

TEST(MessageLinesTest, splitsOnlyAtExactBreak) {
    EXPECT_THAT(splitMessage("a<BR>b<br/>c<br >d\ne<b"), ElementsAre("a<BR>b<br/>c<br >d\ne<b"));
}

TEST(MessageLinesTest, printsLinesAsEscapedParagraphs) {
    EXPECT_EQ(printedBy([] { printMessage("a & b<br>c"); }), "<p>a &amp; b</p><p>c</p>");
    for (const std::string& text : printableTexts()) {
        const std::string printed = printedBy([&text] { printMessage(text); });
        EXPECT_THAT(tagNamesOf(printed), ElementsAre("p", "/p"));
        EXPECT_EQ(textOf(printed), text);
    }
}

// Tests of the details printed below a message that has the code of the last refusal.
class RefusalDetailsTest : public testing::Test {
protected:
    RefusalDetailsTest() {
        Host::noteIssuedText("refused [73-1549]", {.number = 73, .code = 1549});
    }
    ~RefusalDetailsTest() override { Host::noteRefusal(0, {}); }

    static std::string printedWith(const Host::RefusalDetails& details, int code = 1549) {
        Host::noteRefusal(code, details);
        const std::string printed = printedIn("en", [] { printMessage("refused [73-1549]"); });
        const std::string end = "refused [73-1549]</p>";
        return printed.substr(printed.find(end) + end.size());
    }
};

TEST_F(RefusalDetailsTest, listsPartitionsBelowMessage) {
    EXPECT_EQ(printedWith({"", {{3, ""}, {7, ""}}}),
              "<p class=\"partitions\">Partitions: 3, 7</p>");
}

TEST_F(RefusalDetailsTest, showsVersionsOfEachPartition) {
    EXPECT_EQ(printedWith({"1.23 B", {{0, "10.20.30"}, {2, "<b>"}}}),
              "<p class=\"partitions\">Partition 0: BIOS version 10.20.30, file 1.23 B<br>"
              "Partition 2: BIOS version &lt;b&gt;, file 1.23 B</p>");
}

TEST_F(RefusalDetailsTest, omitsPartitionsOfOtherCode) {
    EXPECT_EQ(printedWith({"", {{3, ""}}}, 1551), "");
    EXPECT_EQ(printedWith({}), "");
}

TEST_F(RefusalDetailsTest, truncatesLongVersionBetweenCharacters) {
    const std::string printed = printedWith({std::string(79, 'x') + "\xC3\xA9", {{0, "1\n2"}}});
    EXPECT_EQ(printed,
              "<p class=\"partitions\">Partition 0: BIOS version 1\xE2\x90\x8A"
              "2, file " +
                  std::string(79, 'x') + "\xE2\x80\xA6</p>");
}

}  // namespace VeskLib::Test
