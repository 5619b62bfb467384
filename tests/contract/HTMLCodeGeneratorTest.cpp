#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include "tests/contract/ProbeComponent.h"
#include "tests/contract/TemporarySkeleton.h"
#include "tests/contract/platformSpecifics.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/printedBy.h"

#include <VeskLib/PException.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace VeskLib::Test {

using Gui::HTMLCodeGenerator;

namespace {

class ThrowingComponent : public Gui::HTMLComponent {
public:
    void printHTML() const override { throw std::runtime_error("cannot be printed"); }
    bool isError() const override { return true; }
};

}  // namespace

class HTMLCodeGeneratorTest : public testing::Test {
protected:
    static std::string mark(const std::string& name) { return skeletonMark(name); }

    // Returns what the generator prints for a skeleton with this content.
    std::string print(const std::string& content) const {
        const TemporarySkeleton skeleton(content);
        return printedHTML(HTMLCodeGenerator(skeleton.path(), &components));
    }

    std::map<std::string, Gui::HTMLComponent*> components;
    ProbeCounts counts;
    ProbeCounts otherCounts;
};

TEST_F(HTMLCodeGeneratorTest, printsSkeletonWithoutMarksUnchanged) {
    // No board can mistake any of this for a mark.
    const std::string content = "<p class=\"x\">caf\xC3\xA9 'and' 100; \n\n</p>\n";
    EXPECT_EQ(print(content), content);
    EXPECT_EQ(print(""), "");
}

TEST_F(HTMLCodeGeneratorTest, printsComponentsAtTheirMarks) {
    ProbeComponent one("1", counts);
    ProbeComponent two("2", counts);
    components = {{"one", &one}, {"two", &two}};
    EXPECT_EQ(print("<" + mark("two") + "|" + mark("one") + ">"), "<2|1>");
    EXPECT_EQ(print(mark("one") + mark("two")), "12");
}

TEST_F(HTMLCodeGeneratorTest, printsComponentOncePerMark) {
    ProbeComponent one("1", counts);
    ProbeComponent two("2", otherCounts);
    components = {{"one", &one}, {"two", &two}};
    EXPECT_EQ(print(mark("one")), "1");
    EXPECT_EQ(counts.printed, 1);
    EXPECT_EQ(otherCounts.printed, 0);
    EXPECT_EQ(print(mark("one") + "+" + mark("one")), "1+1");
    EXPECT_EQ(counts.printed, 3);
}

TEST_F(HTMLCodeGeneratorTest, unknownNamePrintsNothing) {
    ProbeComponent one("1", counts);
    components = {{"one", &one}};
    EXPECT_EQ(print("[" + mark("filepath") + mark("One") + mark("on") + mark("one_") + "]"), "[]");
}

TEST_F(HTMLCodeGeneratorTest, nullComponentPrintsNothing) {
    components = {{"one", nullptr}};
    EXPECT_EQ(print("[" + mark("one") + "]"), "[]");
}

TEST_F(HTMLCodeGeneratorTest, doesNotExpandMarksInComponentOutput) {
    ProbeComponent secret("SECRET", otherCounts);
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        ProbeComponent hostile(text + mark("message") + mark("hostile"), counts);
        components = {{"hostile", &hostile}, {"message", &secret}};
        EXPECT_EQ(print("[" + mark("hostile") + "]"),
                  "[" + text + mark("message") + mark("hostile") + "]");
    }
    EXPECT_EQ(otherCounts.printed, 0);
}

TEST_F(HTMLCodeGeneratorTest, looksUpComponentsWhenPrinting) {
    const TemporarySkeleton skeleton("[" + mark("one") + "]");
    const HTMLCodeGenerator generator(skeleton.path(), &components);
    EXPECT_EQ(printedHTML(generator), "[]");
    ProbeComponent one("1", counts);
    components["one"] = &one;
    EXPECT_EQ(printedHTML(generator), "[1]");
    components.clear();
    EXPECT_EQ(printedHTML(generator), "[]");
}

TEST_F(HTMLCodeGeneratorTest, doesNotOwnComponents) {
    ProbeComponent one("1", counts);
    components["one"] = &one;
    print(mark("one"));
    EXPECT_EQ(counts.deleted, 0);
    EXPECT_EQ(components.size(), 1u);
}

TEST_F(HTMLCodeGeneratorTest, setSkeletonFileReplacesSkeleton) {
    const TemporarySkeleton first("first");
    const TemporarySkeleton second("second");
    HTMLCodeGenerator generator(first.path(), &components);
    EXPECT_EQ(printedHTML(generator), "first");
    generator.setSkeletonFile(second.path());
    EXPECT_EQ(printedHTML(generator), "second");
}

TEST_F(HTMLCodeGeneratorTest, generatorsCanBeNested) {
    class Row : public Gui::HTMLComponent {
    public:
        explicit Row(const HTMLCodeGenerator& generator) : generator(generator) {}
        void printHTML() const override { generator.printHTML(); }
        bool isError() const override { return false; }

    private:
        const HTMLCodeGenerator& generator;
    };
    const TemporarySkeleton rowSkeleton("<" + mark("cell") + ">");
    ProbeComponent cell("c", counts);
    const std::map<std::string, Gui::HTMLComponent*> cells = {{"cell", &cell}};
    const HTMLCodeGenerator rowGenerator(rowSkeleton.path(), &cells);
    Row row(rowGenerator);
    components["row"] = &row;
    EXPECT_EQ(print("[" + mark("row") + mark("cell") + mark("row") + "]"), "[<c><c>]");
}

TEST_F(HTMLCodeGeneratorTest, missingSkeletonThrowsWhenPrintedAndPrintsNothing) {
    const HTMLCodeGenerator generator("/var/tmp/no_such_skeleton.txt", &components);
    EXPECT_EQ(printedBy([&generator] { EXPECT_THROW(generator.printHTML(), PException); }), "");
}

TEST_F(HTMLCodeGeneratorTest, folderAsSkeletonThrowsAndPrintsNothing) {
    const HTMLCodeGenerator generator("/var/tmp", &components);
    EXPECT_EQ(printedBy([&generator] { EXPECT_THROW(generator.printHTML(), PException); }), "");
}

TEST_F(HTMLCodeGeneratorTest, propagatesExceptionOfComponent) {
    ThrowingComponent throwing;
    components["throwing"] = &throwing;
    EXPECT_THROW(print("before" + mark("throwing") + "after"), std::runtime_error);
}

}  // namespace VeskLib::Test
