#include "platform/host/html/escape.h"

#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"
#include "tests/support/scriptStrings.h"

#include <gmock/gmock.h>

#include <map>

namespace VeskLib::Test {

using Host::escapeHTML;
using Host::escapeScript;
using testing::ElementsAre;

TEST(EscapeTest, everyByteOfAnHTMLTextIsEitherItselfOrItsReference) {
    const std::map<char, std::string> references = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        const char byte = static_cast<char>(value);
        const auto reference = references.find(byte);
        EXPECT_EQ(escapeHTML({&byte, 1}),
                  reference == references.end() ? std::string(1, byte) : reference->second);
    }
}

TEST(EscapeTest, anHTMLTextIsPrintedAsItIsEscaped) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(printedBy([&text] { Host::printEscaped(text); }), escapeHTML(text));
    }
}

TEST(EscapeTest, everyByteOfAScriptTextIsEitherItselfOrItsEscape) {
    const std::string escaped = "\"'$`\\<>&\x7F";
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        const char byte = static_cast<char>(value);
        std::string expected(1, byte);
        if (value < 0x20 || escaped.find(byte) != std::string::npos) {
            const char digits[] = "0123456789abcdef";
            expected = {'\\', 'x', digits[value / 16], digits[value % 16]};
        }
        EXPECT_EQ(escapeScript({&byte, 1}), expected);
    }
}

TEST(EscapeTest, theLineSeparatorsOfOlderScriptsAreEscaped) {
    EXPECT_EQ(escapeScript("a\xE2\x80\xA8z"), "a\\u2028z");
    EXPECT_EQ(escapeScript("\xE2\x80\xA9"), "\\u2029");
    EXPECT_EQ(escapeScript("\xE2\x80\xA7\xE2\x80\xB0"), "\xE2\x80\xA7\xE2\x80\xB0");
}

TEST(EscapeTest, aSeparatorThatIsCutShortIsKept) {
    EXPECT_EQ(escapeScript("\xE2\x80"), "\xE2\x80");
    EXPECT_EQ(escapeScript("\xE2"), "\xE2");
    EXPECT_EQ(escapeScript("\xE2\x80<"), "\xE2\x80\\x3c");
}

TEST(EscapeTest, aBrowserReadsBackWhatWasEscaped) {
    for (const std::string& text : hostileTexts()) {
        SCOPED_TRACE(text);
        EXPECT_EQ(textOf(escapeHTML(text)), text);
        EXPECT_EQ(tagsOf("<p title=\"" + escapeHTML(text) + "\">").at(0).attributes.at("title"),
                  text);
        const std::string escaped = escapeScript(text);
        const std::string script =
            "f(\"" + escaped + "\");f('" + escaped + "');f(`" + escaped + "`)";
        EXPECT_THAT(stringArgumentsOf(script, "f"), ElementsAre(text, text, text));
    }
}

TEST(EscapeTest, aTextWithoutSpecialCharactersIsKept) {
    EXPECT_EQ(escapeHTML(""), "");
    EXPECT_EQ(escapeScript(""), "");
    EXPECT_EQ(escapeScript("caf\xC3\xA9 {}()%#@!~*=+-_.,:;?/|^[]"),
              "caf\xC3\xA9 {}()%#@!~*=+-_.,:;?/|^[]");
}

}  // namespace VeskLib::Test
