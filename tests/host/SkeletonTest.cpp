#include "platform/host/html/Skeleton.h"

#include "platform/host/base/scriptNonce.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/html/sharedComponents.h"
#include "tests/host/printSkeleton.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"
#include "tests/support/scriptStrings.h"

#include <VeskLib/Gui/TextString.h>

#include <gmock/gmock.h>

#include <iostream>
#include <stdexcept>

namespace VeskLib::Test {

using Gui::TextString;
using Host::Skeleton;
using testing::ElementsAre;

TEST(SkeletonTest, printsComponentVerbatim) {
    TextString markup("<b>&</b>", false, true);
    EXPECT_EQ(print("[{{a}}|{{a}}]", {{"a", &markup}}), "[<b>&</b>|<b>&</b>]");
}

TEST(SkeletonTest, acceptsLettersDigitsAndUnderscoresInNames) {
    TextString one("1");
    const Components components = {
        {"pid0", &one},      {"Hidden_Status_9", &one}, {"_", &one},    {"0", &one},
        {"language0", &one}, {"ending", &one},          {"iffy", &one}, {"texts", &one}};
    EXPECT_EQ(print("{{pid0}}{{Hidden_Status_9}}{{_}}{{0}}{{language0}}{{ending}}{{iffy}}{{texts}}",
                    components),
              "11111111");
}

TEST(SkeletonTest, printsNothingForUnknownName) {
    EXPECT_EQ(print("[{{a}}{{a|script}}{{a|attribute}}{{if a}}x{{end}}]"), "[]");
    EXPECT_EQ(print("[{{a}}{{a|script}}{{if a}}x{{end}}]", {{"a", nullptr}}), "[]");
}

TEST(SkeletonTest, fallsBackToSharedText) {
    TextString own("own");
    Host::shareText("a", "<shared>");
    EXPECT_EQ(print("{{a}}{{a|attribute}}{{if a}}x{{end}}{{unless a}}y{{end}}"),
              "&lt;shared&gt;&amp;lt;shared&amp;gt;x");
    EXPECT_EQ(print("{{a}}", {{"a", &own}}), "own");
    Host::unshare("a");
    EXPECT_EQ(print("[{{a}}{{if a}}x{{end}}]"), "[]");
}

TEST(SkeletonTest, escapesTextForScript) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        TextString component(text, false, true);
        const std::string printed =
            print("<script>alert(\"{{a|script}}\");</script>", {{"a", &component}});
        EXPECT_THAT(tagNamesOf(printed), ElementsAre("script", "/script"));
        EXPECT_THAT(stringArgumentsOf(scriptsOf(printed).at(0), "alert"), ElementsAre(text));
    }
}

TEST(SkeletonTest, escapesTextForAttribute) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        TextString component(text, false, true);
        const std::string printed = print("<a href=\"{{a|attribute}}\">", {{"a", &component}});
        EXPECT_EQ(tagsOf(printed).at(0).attributes,
                  (std::map<std::string, std::string>{{"href", text}}));
    }
}

TEST(SkeletonTest, usesOneNoncePerPage) {
    // Runs in a child process, because a process keeps its nonce.
    const ChildResult result = runInChild([] {
        Skeleton("{{nonce}} {{nonce}} ").print({});
        std::cout << Host::scriptNonce();
        return 0;
    });
    const std::string nonce = result.output.substr(0, 32);
    EXPECT_EQ(result.output, nonce + " " + nonce + " " + nonce);
    EXPECT_EQ(result.output.size(), 98U);
}

TEST(SkeletonTest, conditionTestsOnlyPresence) {
    TextString empty("");
    TextString one("1");
    EXPECT_EQ(print("[{{if a}}yes{{end}}]", {{"a", &empty}}), "[yes]");
    EXPECT_EQ(print("[{{if a}}yes{{end}}]", {{"b", &one}}), "[]");
    EXPECT_EQ(print("{{if a}}{{end}}", {{"a", &one}}), "");
}

TEST(SkeletonTest, nestsConditions) {
    const std::string source = "<{{if a}}A{{if b}}B{{end}}a{{end}}{{if b}}b{{end}}>";
    TextString one("1");
    EXPECT_EQ(print(source, {{"a", &one}, {"b", &one}}), "<ABab>");
    EXPECT_EQ(print(source, {{"a", &one}}), "<Aa>");
    EXPECT_EQ(print(source, {{"b", &one}}), "<b>");
    EXPECT_EQ(print(source), "<>");
}

TEST(SkeletonTest, acceptsConsecutiveAndFinalConditions) {
    TextString one("1");
    const std::string source =
        "{{if a}}{{if a}}{{a}}{{end}}{{end}}{{if b}}x{{end}}{{if a}}y{{end}}";
    EXPECT_EQ(print(source, {{"a", &one}}), "1y");
    EXPECT_EQ(print(source), "");
}

TEST(SkeletonTest, printsCaptionsInRequestLanguage) {
    EXPECT_EQ(printIn("en", "{{language}}: {{text 1006}}"), "en: Back up");
    EXPECT_EQ(printIn("ja", "{{language}}: {{text 1006}}"),
              "ja: \xE3\x83\x90\xE3\x83\x83\xE3\x82\xAF\xE3\x82\xA2\xE3\x83\x83\xE3\x83\x97");
}

TEST(SkeletonTest, escapesCaptionsForTheirPlace) {
    const std::string html = printIn("en", "{{text 9058}}");
    const std::string attribute = printIn("en", "{{text 9058|attribute}}");
    const std::string script = printIn("en", "{{text 9058|script}}");
    EXPECT_EQ(html, attribute);
    EXPECT_NE(html.find("file&#39;s"), std::string::npos) << html;
    EXPECT_NE(script.find("file\\x27s"), std::string::npos) << script;
}

TEST(SkeletonTest, printsNothingForUnknownCaption) {
    EXPECT_EQ(printIn("en", "[{{text 32000}}]"), "[]");
}

TEST(SkeletonTest, keepsBracesOutsideMarks) {
    EXPECT_EQ(print("a { b } c }} d {x} } }"), "a { b } c }} d {x} } }");
    EXPECT_EQ(print("{"), "{");
    EXPECT_EQ(print("}}"), "}}");
}

TEST(SkeletonTest, restoresOutputAfterComponentThrows) {
    class Throwing : public Gui::HTMLComponent {
    public:
        void printHTML() const override {
            std::cout << "half";
            throw std::runtime_error("failed");
        }
        bool isError() const override { return true; }
    };
    Throwing throwing;
    const Skeleton skeleton("{{a|script}}");
    const std::string printed = printedBy([&] {
        EXPECT_THROW(skeleton.print({{"a", &throwing}}), std::runtime_error);
        std::cout << "after";
    });
    EXPECT_EQ(printed, "after");
}

TEST(SkeletonTest, returnsPieces) {
    const Skeleton skeleton("a{{b|script}}{{text 9001}}{{if c}}{{language}}{{end}}");
    const std::vector<Skeleton::Piece>& pieces = skeleton.getPieces();
    ASSERT_EQ(pieces.size(), 5u);
    EXPECT_EQ(pieces[0].kind, Skeleton::Kind::PLAIN);
    EXPECT_EQ(pieces[1].text, "b");
    EXPECT_EQ(pieces[1].place, Skeleton::Place::SCRIPT);
    EXPECT_EQ(pieces[2].number, 9001);
    EXPECT_EQ(pieces[3].next, 5u);
    EXPECT_EQ(pieces[4].kind, Skeleton::Kind::LANGUAGE);
}

TEST(SkeletonTest, printsShownStagedFile) {
    EXPECT_EQ(print("[{{staged_file}}]"), "[]");
    Host::setShownFile("ab");
    EXPECT_EQ(print("[{{staged_file}}]"), "[ab]");
    Host::setShownFile("");
}

}  // namespace VeskLib::Test
