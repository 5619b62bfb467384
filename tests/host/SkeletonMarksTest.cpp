#include "tests/host/printSkeleton.h"
#include "tests/support/markup.h"
#include "tests/support/scriptStrings.h"

#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/Gui/TextString.h>

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::MessageMgr;
using Gui::TextString;
using testing::ElementsAre;

TEST(SkeletonMarksTest, printsMessageWithCodeInRequestLanguage) {
    const MessageMgr english(0);
    const MessageMgr japanese(1);
    ASSERT_NE(english.getMessage(33, 1028), japanese.getMessage(33, 1028));
    EXPECT_EQ(printIn("en", "[{{message 33-1028|attribute}}]"),
              "[" + english.getMessage(33, 1028) + "]");
    EXPECT_EQ(printIn("ja", "[{{message 33-1028|attribute}}]"),
              "[" + japanese.getMessage(33, 1028) + "]");
}

TEST(SkeletonMarksTest, printsMessageWithoutCode) {
    const std::string message = MessageMgr(0).getMessage(303, 0);
    EXPECT_EQ(message.find('['), std::string::npos);
    EXPECT_EQ(textOf(printIn("en", "{{message 303-0}}")), message);
    EXPECT_EQ(textOf(printIn("en", "{{message 303-7}}")), message + " [303-7]");
}

TEST(SkeletonMarksTest, escapesMessageForItsPlace) {
    const std::string message = MessageMgr(0).getMessage(293, 5);
    const std::string printed = printIn(
        "en",
        "<p title=\"{{message 293-5|attribute}}\"><script>alert(\"{{message 293-5|script}}\")"
        "</script>{{message 293-5}}</p>");
    EXPECT_EQ(tagsOf(printed, "p").at(0).attributes.at("title"), message);
    EXPECT_THAT(stringArgumentsOf(scriptsOf(printed).at(0), "alert"), ElementsAre(message));
    EXPECT_EQ(textOf(printed), message);
    EXPECT_THAT(tagNamesOf(printed), ElementsAre("p", "script", "/script", "/p"));
}

TEST(SkeletonMarksTest, showsUnknownMessage) {
    EXPECT_EQ(printIn("en", "{{message 31999-4}}"), MessageMgr(0).getMessage(31999, 4));
}

TEST(SkeletonMarksTest, rejectsMalformedMessages) {
    for (const char* mark : {"{{message }}",
                             "{{message 33}}",
                             "{{message 33-}}",
                             "{{message -0}}",
                             "{{message -1028}}",
                             "{{message 0-1}}",
                             "{{message 33-x}}",
                             "{{message x-1028}}",
                             "{{message 33--1}}",
                             "{{message 33-+1}}",
                             "{{message +33-1}}",
                             "{{message -33-1}}",
                             "{{message 33-00}}",
                             "{{message 33-1 }}",
                             "{{message 33-0 }}",
                             "{{message  33-1}}",
                             "{{message 33 -1}}",
                             "{{message 33- 1}}",
                             "{{message 33-1-2}}",
                             "{{message 33-0-2}}",
                             "{{message 33-0x1}}",
                             "{{message 33-1|html}}",
                             "{{message 33-1|}}",
                             "{{message 33-1|script|script}}",
                             "{{message 33-1 |script}}",
                             "{{message |script}}",
                             "{{message 99999999999-1}}",
                             "{{message 33-99999999999}}",
                             "{{message-33-1}}",
                             "{{Message 33-1}}"}) {
        EXPECT_EQ(problemOf(mark), "1:1 not a mark") << mark;
    }
}

TEST(SkeletonMarksTest, acceptsWellFormedMarks) {
    for (const char* mark :
         {"{{message 33-1028}}", "{{message 33-0}}", "{{message 1-1|script}}",
          "{{message 1-0|attribute}}", "{{message}}", "{{message|script}}", "{{unless a}}{{end}}",
          "{{unless a}}{{if b}}{{end}}{{end}}", "{{unless}}", "{{unlessa}}"}) {
        EXPECT_EQ(problemOf(mark), "") << mark;
    }
}

TEST(SkeletonMarksTest, unlessPrintsOnlyWithoutComponent) {
    TextString one("1");
    const std::string source = "[{{unless a}}none{{end}}{{if a}}{{a}}{{end}}]";
    EXPECT_EQ(print(source), "[none]");
    EXPECT_EQ(print(source, {{"a", &one}}), "[1]");
    EXPECT_EQ(print(source, {{"a", nullptr}}), "[none]");
    EXPECT_EQ(print(source, {{"b", &one}}), "[none]");
}

TEST(SkeletonMarksTest, nestsConditionsOfBothKinds) {
    TextString one("1");
    const std::string source =
        "{{unless a}}A{{unless b}}B{{end}}c{{if b}}D{{end}}e{{end}}"
        "{{if a}}F{{unless b}}G{{end}}h{{end}}.";
    EXPECT_EQ(print(source), "ABce.");
    EXPECT_EQ(print(source, {{"b", &one}}), "AcDe.");
    EXPECT_EQ(print(source, {{"a", &one}}), "FGh.");
    EXPECT_EQ(print(source, {{"a", &one}, {"b", &one}}), "Fh.");
}

TEST(SkeletonMarksTest, acceptsEmptyOrFinalCondition) {
    TextString one("1");
    EXPECT_EQ(print("x{{unless a}}{{end}}"), "x");
    EXPECT_EQ(print("x{{unless a}}{{end}}", {{"a", &one}}), "x");
    EXPECT_EQ(print("{{unless a}}x{{end}}", {{"a", &one}}), "");
    EXPECT_EQ(print("{{unless a}}x{{end}}{{unless a}}y{{end}}z", {{"a", &one}}), "z");
}

TEST(SkeletonMarksTest, rejectsMalformedConditions) {
    for (const char* mark :
         {"{{unless }}{{end}}", "{{unless  a}}{{end}}", "{{unless a }}{{end}}",
          "{{unless a b}}{{end}}", "{{unless a|script}}{{end}}", "{{unless a-b}}{{end}}",
          "{{ unless a}}{{end}}", "{{Unless a}}{{end}}", "{{unless unless a}}{{end}}",
          "{{unless if a}}{{end}}", "{{if if a}}{{end}}", "{{unless text 9001}}{{end}}",
          "{{unless message 33-1}}{{end}}"}) {
        EXPECT_EQ(problemOf(mark), "1:1 not a mark") << mark;
    }
    EXPECT_EQ(problemOf("{{unless a}}{{end}}\n {{end}}"), "2:2 not a mark");
}

// Regression test: the mark was taken for "{{if a}}".
TEST(SkeletonMarksTest, rejectsTwoConditionsInOneMark) {
    EXPECT_EQ(problemOf("{{if unless a}}{{end}}"), "1:1 not a mark");
}

// Regression test: the reported column was four off, and could be before the start of the skeleton.
TEST(SkeletonMarksTest, reportsStartOfUnclosedCondition) {
    EXPECT_EQ(problemOf("{{unless a}}"), "1:1 the condition has no end");
    EXPECT_EQ(problemOf("a\n {{unless a}} b"), "2:2 the condition has no end");
    EXPECT_EQ(problemOf("{{if a}}{{end}} {{unless b}}{{if c}}{{end}}"),
              "1:17 the condition has no end");
    EXPECT_EQ(problemOf("{{unless b}}\n{{if c}}"), "2:1 the condition has no end");
}

}  // namespace VeskLib::Test
