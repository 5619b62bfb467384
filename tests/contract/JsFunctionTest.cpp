#include <VeskLib/Gui/JsFunction.h>

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"
#include "tests/support/scriptStrings.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::JsFunction;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Returns the only script that the function prints.
std::string scriptOf(const JsFunction& function) {
    const std::vector<std::string> scripts = scriptsOf(printedHTML(function));
    EXPECT_THAT(scripts, SizeIs(1));
    return scripts.empty() ? "" : scripts[0];
}

std::vector<std::string> alertsOf(const JsFunction& function) {
    return stringArgumentsOf(scriptOf(function), "alert");
}

JsFunction& withAlert(JsFunction& function, const std::string& text) {
    function.addAlertFunction(text);
    return function;
}

}  // namespace

TEST(JsFunctionTest, definesFunctionOfItsName) {
    const JsFunction function("onLoadFunction()");
    EXPECT_THAT(scriptOf(function), HasSubstr("function onLoadFunction()"));
    EXPECT_THAT(alertsOf(function), IsEmpty());
}

TEST(JsFunctionTest, keepsOrderOfCalls) {
    JsFunction function("onLoadFunction()");
    function.addFunction("initialize()");
    function.addAlertFunction("first");
    function.addFunction("show(1)");
    function.addAlertFunction("second");
    EXPECT_THAT(alertsOf(function), ElementsAre("first", "second"));
    const std::string script = withoutStrings(scriptOf(function));
    const std::size_t header = script.find("onLoadFunction()");
    const std::size_t initialize = script.find("initialize()");
    const std::size_t firstAlert = script.find("alert(");
    const std::size_t show = script.find("show(1)");
    const std::size_t secondAlert = script.rfind("alert(");
    EXPECT_LT(header, initialize);
    EXPECT_LT(initialize, firstAlert);
    EXPECT_LT(firstAlert, show);
    EXPECT_LT(show, secondAlert);
    EXPECT_NE(secondAlert, std::string::npos);
}

TEST(JsFunctionTest, alertShowsHostileTextsUnchanged) {
    JsFunction harmless("onLoadFunction()");
    const std::string structure = withoutStrings(scriptOf(withAlert(harmless, "harmless")));
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        JsFunction function("onLoadFunction()");
        withAlert(function, text);
        EXPECT_THAT(alertsOf(function), ElementsAre(text));
        EXPECT_EQ(withoutStrings(scriptOf(function)), structure);
    }
}

TEST(JsFunctionTest, hostileAlertDoesNotChangeTags) {
    JsFunction harmless("onLoadFunction()");
    const std::vector<std::string> tags = tagNamesOf(printedHTML(withAlert(harmless, "harmless")));
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        JsFunction function("onLoadFunction()");
        EXPECT_EQ(tagNamesOf(printedHTML(withAlert(function, text))), tags);
    }
}

TEST(JsFunctionTest, hostileAlertCannotEndOrCommentOutScript) {
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        JsFunction function("onLoadFunction()");
        const std::string script = scriptOf(withAlert(function, text));
        EXPECT_EQ(script.find("</"), std::string::npos);
        EXPECT_EQ(script.find("<!--"), std::string::npos);
    }
}

TEST(JsFunctionTest, alertShowsBreaksAsLines) {
    JsFunction function("onLoadFunction()");
    function.addAlertFunction("not restored<br>back-end \"busy\"<br>try again");
    EXPECT_THAT(alertsOf(function), ElementsAre("not restored\nback-end \"busy\"\ntry again"));
}

TEST(JsFunctionTest, showsEmptyAlert) {
    JsFunction function("onLoadFunction()");
    function.addAlertFunction("");
    EXPECT_THAT(alertsOf(function), ElementsAre(""));
}

TEST(JsFunctionTest, printsAlertTextOnPageToo) {
    for (const std::string& text : printableTexts()) {
        SCOPED_TRACE(text);
        JsFunction function("onLoadFunction()");
        EXPECT_THAT(textOf(printedHTML(withAlert(function, text))), HasSubstr(text));
    }
}

TEST(JsFunctionTest, printsNoTextOnPageWithoutAlert) {
    JsFunction function("onLoadFunction()");
    function.addFunction("initialize()");
    EXPECT_THAT(textOf(printedHTML(function)), testing::MatchesRegex("[ \n]*"));
}

TEST(JsFunctionTest, isErrorReturnsFalse) {
    EXPECT_FALSE(JsFunction("onLoadFunction()").isError());
}

}  // namespace VeskLib::Test
