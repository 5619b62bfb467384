#include "tests/host/printSkeleton.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

TEST(SkeletonErrorTest, rejectsMalformedMarks) {
    for (const char* mark : {"{{}}",
                             "{{ }}",
                             "{{ a}}",
                             "{{a }}",
                             "{{a b}}",
                             "{{a-b}}",
                             "{{a.b}}",
                             "{{a/b}}",
                             "{{{a}}",
                             "{{a\n}}",
                             "{{|script}}",
                             "{{|attribute}}",
                             "{{a|}}",
                             "{{a|html}}",
                             "{{a|Script}}",
                             "{{a|script|script}}",
                             "{{a |script}}",
                             "{{a|script }}",
                             "{{text }}",
                             "{{text x}}",
                             "{{text 0}}",
                             "{{text -1}}",
                             "{{text +1}}",
                             "{{text 9001x}}",
                             "{{text  9001}}",
                             "{{text 9001 }}",
                             "{{text 0x10}}",
                             "{{text 99999999999}}",
                             "{{text |script}}",
                             "{{text 9001|html}}",
                             "{{if }}",
                             "{{if a b}}{{end}}",
                             "{{if a|script}}{{end}}",
                             "{{if  a}}{{end}}",
                             "{{language|script}}",
                             "{{nonce|attribute}}",
                             "{{staged_file|script}}",
                             "{{end|script}}",
                             "{{end}}",
                             "{{end }}",
                             "{{ end}}",
                             "{{\xC3\xA9}}"}) {
        EXPECT_EQ(problemOf(mark), "1:1 not a mark") << mark;
    }
}

TEST(SkeletonErrorTest, acceptsWellFormedMarks) {
    for (const char* mark :
         {"{{a}}", "{{a|script}}", "{{a|attribute}}", "{{text 1}}", "{{text 9001|script}}",
          "{{text 9001|attribute}}", "{{language}}", "{{staged_file}}", "{{if a}}{{end}}",
          "{{if a}}{{if b}}{{end}}{{end}}", ""}) {
        EXPECT_EQ(problemOf(mark), "") << mark;
    }
}

TEST(SkeletonErrorTest, reportsLineAndColumnOfMark) {
    EXPECT_EQ(problemOf("\n\n  {{a b}}"), "3:3 not a mark");
    EXPECT_EQ(problemOf("{{a}}\n{{b}} {{c d}}\n"), "2:7 not a mark");
    EXPECT_EQ(problemOf("\n{{}}"), "2:1 not a mark");
    EXPECT_EQ(problemOf("x{{}}"), "1:2 not a mark");
}

TEST(SkeletonErrorTest, rejectsUnclosedMark) {
    EXPECT_EQ(problemOf("<p>\n {{title"), "2:2 the mark is not closed");
    EXPECT_EQ(problemOf("{{a}"), "1:1 the mark is not closed");
    EXPECT_EQ(problemOf("{{"), "1:1 the mark is not closed");
    EXPECT_EQ(problemOf("{{a}}{{"), "1:6 the mark is not closed");
}

TEST(SkeletonErrorTest, reportsStartOfUnclosedCondition) {
    EXPECT_EQ(problemOf("a\n {{if a}} b"), "2:2 the condition has no end");
    EXPECT_EQ(problemOf("{{if a}}"), "1:1 the condition has no end");
    EXPECT_EQ(problemOf("{{if a}}{{end}}\n{{if b}}"), "2:1 the condition has no end");
}

TEST(SkeletonErrorTest, reportsUnclosedAmongClosedConditions) {
    EXPECT_EQ(problemOf("{{if a}}\n{{if b}}\n{{end}}\n"), "1:1 the condition has no end");
    EXPECT_EQ(problemOf("{{if a}}\n{{if b}}\n"), "2:1 the condition has no end");
    EXPECT_EQ(problemOf("x{{if a}}{{if b}}{{end}}{{if c}}{{end}}"), "1:2 the condition has no end");
}

TEST(SkeletonErrorTest, rejectsSurplusEnd) {
    EXPECT_EQ(problemOf("{{if a}}{{end}}\n{{end}}"), "2:1 not a mark");
}

}  // namespace VeskLib::Test
