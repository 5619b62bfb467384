#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"

#include <VeskLib/Gui/Button.h>
#include <VeskLib/Gui/CheckBox.h>
#include <VeskLib/Gui/SelectFile.h>

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Gui::Button;
using Gui::CheckBox;
using Gui::SelectFile;

namespace {

const int ALLOWED = 2;

using Attributes = std::map<std::string, std::string>;

Attributes attributesOf(const std::string& printed, const std::string& tag) {
    const std::vector<Tag> tags = tagsOf(printed, tag);
    EXPECT_EQ(tags.size(), 1U) << printed;
    return tags.empty() ? Attributes() : tags[0].attributes;
}

}  // namespace

TEST(ComponentPrintingTest, printsCheckBox) {
    CheckBox boxes("title", "description", "form", &ALLOWED);
    boxes.add("all", "", "Select all", "", true, false);
    boxes.add("pid3", "3", "", "hint", false, true);
    boxes.setClickHandler("switchField()");
    EXPECT_EQ(
        printedHTML(boxes),
        "<input type=\"checkbox\" id=\"all\" name=\"all\" value=\"\" form=\"form\""
        " title=\"title\" aria-describedby=\"description\" data-click=\"switchField()\" checked>"
        "<label for=\"all\">Select all</label>"
        "<input type=\"checkbox\" id=\"pid3\" name=\"pid3\" value=\"3\" form=\"form\""
        " title=\"hint\" aria-describedby=\"description\" data-click=\"switchField()\""
        " disabled>");
}

TEST(ComponentPrintingTest, omitsEmptyAttributesOfCheckBox) {
    CheckBox boxes("", "", "form", &ALLOWED);
    boxes.add("pid3", "3", "", "", false, false);
    EXPECT_EQ(printedHTML(boxes),
              "<input type=\"checkbox\" id=\"pid3\" name=\"pid3\" value=\"3\" form=\"form\">");
}

TEST(ComponentPrintingTest, printsButton) {
    EXPECT_EQ(printedHTML(Button("install", "Upload", "form", 12, "\"uploadFunction()\"", false)),
              "<button type=\"button\" id=\"install\" name=\"install\" form=\"form\""
              " data-click=\"uploadFunction()\" data-width=\"12\">Upload</button>");
    EXPECT_EQ(printedHTML(Button("b", "B", "f", 0, "call()", true)),
              "<button type=\"button\" id=\"b\" name=\"b\" form=\"f\" data-click=\"call()\""
              " disabled>B</button>");
}

TEST(ComponentPrintingTest, stripsQuotesAroundCallOfButton) {
    const std::vector<std::pair<std::string, std::string>> calls = {
        {"\"a()\"", "a()"},
        {"a()", "a()"},
        {"", ""},
        {"\"", "\""},
        {"\"\"", ""},
        {"\"a()", "\"a()"},
        {"a()\"", "a()\""},
        {"\"\"a()\"\"", "\"a()\""},
        {"\"a(\"x\")\"", "a(\"x\")"},
        {"'a()'", "'a()'"},
    };
    for (const auto& [call, expected] : calls) {
        const std::string printed = printedHTML(Button("b", "B", "f", 0, call, false));
        EXPECT_EQ(attributesOf(printed, "button").at("data-click"), expected) << call;
    }
}

TEST(ComponentPrintingTest, omitsWidthBelowOne) {
    for (const int width : {0, -1}) {
        const std::string printed = printedHTML(Button("b", "B", "f", width, "a()", false));
        EXPECT_FALSE(attributesOf(printed, "button").contains("data-width"));
    }
}

TEST(ComponentPrintingTest, printsFileSelector) {
    EXPECT_EQ(printedHTML(SelectFile("filename", ".dat", "form", 70, 255)),
              "<input type=\"file\" id=\"filename\" name=\"filename\" form=\"form\""
              " accept=\".dat\" size=\"70\" maxlength=\"255\">");
    for (const int none : {0, -1}) {
        EXPECT_EQ(printedHTML(SelectFile("f", "", "form", none, none)),
                  "<input type=\"file\" id=\"f\" name=\"f\" form=\"form\">");
    }
}

TEST(ComponentPrintingTest, escapesTextsOfCheckBox) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        CheckBox boxes(text, text, text, &ALLOWED);
        boxes.add(text, text, text, "", true, true);
        boxes.setClickHandler(text);
        const std::string printed = printedHTML(boxes);
        EXPECT_EQ(tagNamesOf(printed), (std::vector<std::string>{"input", "label", "/label"}));
        EXPECT_EQ(textOf(printed), text);
        EXPECT_EQ(attributesOf(printed, "input"), (Attributes{{"type", "checkbox"},
                                                              {"id", text},
                                                              {"name", text},
                                                              {"value", text},
                                                              {"form", text},
                                                              {"title", text},
                                                              {"aria-describedby", text},
                                                              {"data-click", text},
                                                              {"checked", ""},
                                                              {"disabled", ""}}));
        EXPECT_EQ(attributesOf(printed, "label"), (Attributes{{"for", text}}));
    }
}

TEST(ComponentPrintingTest, escapesHintOfCheckBox) {
    for (const std::string& text : printableTexts()) {
        CheckBox boxes("title", "", "form", &ALLOWED);
        boxes.add("name", "", "", text, false, false);
        const std::string printed = printedHTML(boxes);
        EXPECT_EQ(tagNamesOf(printed), std::vector<std::string>{"input"});
        EXPECT_EQ(attributesOf(printed, "input").at("title"), text);
    }
}

TEST(ComponentPrintingTest, escapesTextsOfButton) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed =
            printedHTML(Button(text, text, text, 1, "\"" + text + "\"", true));
        EXPECT_EQ(tagNamesOf(printed), (std::vector<std::string>{"button", "/button"}));
        EXPECT_EQ(textOf(printed), text);
        EXPECT_EQ(attributesOf(printed, "button"), (Attributes{{"type", "button"},
                                                               {"id", text},
                                                               {"name", text},
                                                               {"form", text},
                                                               {"data-click", text},
                                                               {"data-width", "1"},
                                                               {"disabled", ""}}));
    }
}

TEST(ComponentPrintingTest, escapesTextsOfFileSelector) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        const std::string printed = printedHTML(SelectFile(text, text, text, 0, 0));
        EXPECT_EQ(tagNamesOf(printed), std::vector<std::string>{"input"});
        EXPECT_EQ(textOf(printed), "");
        EXPECT_EQ(
            attributesOf(printed, "input"),
            (Attributes{
                {"type", "file"}, {"id", text}, {"name", text}, {"form", text}, {"accept", text}}));
    }
}

}  // namespace VeskLib::Test
