#include "platform/host/html/escape.h"

#include "tests/support/encodeUTF8.h"
#include "tests/support/hostileTexts.h"
#include "tests/support/markup.h"
#include "tests/support/printedBy.h"
#include "tests/support/scriptStrings.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace VeskLib::Test {

using Host::escapeHTML;
using Host::escapeScript;
using testing::ElementsAre;

namespace {

bool isControl(int value) {
    return (value < 0x20 && value != '\t') || value == 0x7F;
}

// Returns the visible symbol for an ASCII control character.
std::string pictureOf(int value) {
    return encodeUTF8(value == 0x7F ? 0x2421 : 0x2400 + static_cast<char32_t>(value));
}

// Returns the characters that are invisible, change the direction of text, or end a line.
std::vector<char32_t> hiddenCharacters() {
    std::vector<char32_t> all = {0xAD, 0x061C, 0x180E, 0xFEFF};
    for (const auto& [first, last] : {std::pair<char32_t, char32_t>(0x80, 0x9F),
                                      {0x200B, 0x200F},
                                      {0x2028, 0x202E},
                                      {0x2060, 0x206F},
                                      {0xFFF9, 0xFFFB},
                                      {0xE0000, 0xE007F}}) {
        for (char32_t character = first; character <= last; ++character) {
            all.push_back(character);
        }
    }
    return all;
}

}  // namespace

TEST(EscapeTest, escapesEveryByteForHTML) {
    const std::map<char, std::string> references = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        const char byte = static_cast<char>(value);
        const auto reference = references.find(byte);
        const std::string expected = isControl(value)                ? pictureOf(value)
                                     : reference == references.end() ? std::string(1, byte)
                                                                     : reference->second;
        EXPECT_EQ(escapeHTML({&byte, 1}), expected);
    }
}

TEST(EscapeTest, replacesHiddenCharacters) {
    for (const char32_t character : hiddenCharacters()) {
        SCOPED_TRACE(static_cast<unsigned int>(character));
        const std::string text = "a" + encodeUTF8(character) + "z";
        EXPECT_EQ(escapeHTML(text), "a\uFFFDz");
        EXPECT_EQ(escapeScript(text), "a\uFFFDz");
        EXPECT_EQ(Host::makeVisible(text + "<\n"), "a\uFFFDz<\u240A");
        EXPECT_EQ(escapeHTML(text.substr(1) + text), "\uFFFDza\uFFFDz");
    }
}

TEST(EscapeTest, keepsNeighboursOfHiddenCharacters) {
    for (const char32_t character : std::initializer_list<char32_t>{
             0xA0,   0xAC,   0xAE,   0xBF,   0x061B, 0x061D,  0x180D,
             0x180F, 0x200A, 0x2010, 0x2027, 0x202F, 0x205F,  0x2070,
             0x20AC, 0xFEFE, 0xFF01, 0xFFF8, 0xFFFD, 0x1F600, 0xE0080}) {
        SCOPED_TRACE(static_cast<unsigned int>(character));
        const std::string text = encodeUTF8(character);
        EXPECT_EQ(escapeHTML(text), text);
        EXPECT_EQ(escapeScript(text), text);
    }
}

TEST(EscapeTest, printEscapedMatchesEscapeHTML) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(printedBy([&text] { Host::printEscaped(text); }), escapeHTML(text));
    }
}

TEST(EscapeTest, escapesEveryByteForScripts) {
    const std::string escaped = "\"'$`\\<>&\t";
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        const char byte = static_cast<char>(value);
        std::string expected(1, byte);
        if (isControl(value)) {
            expected = pictureOf(value);
        } else if (escaped.find(byte) != std::string::npos) {
            const char digits[] = "0123456789abcdef";
            expected = {'\\', 'x', digits[value / 16], digits[value % 16]};
        }
        EXPECT_EQ(escapeScript({&byte, 1}), expected);
    }
}

TEST(EscapeTest, keepsTruncatedCharacter) {
    EXPECT_EQ(escapeScript("\xE2\x80"), "\xE2\x80");
    EXPECT_EQ(escapeScript("\xE2"), "\xE2");
    EXPECT_EQ(escapeScript("\xE2\x80<"), "\xE2\x80\\x3c");
    EXPECT_EQ(escapeHTML("\xE2\x80"), "\xE2\x80");
    EXPECT_EQ(escapeHTML("\xC2<"), "\xC2&lt;");
}

TEST(EscapeTest, browserReadsBackEscapedText) {
    for (const std::string& text : printableTexts()) {
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

TEST(EscapeTest, keepsOrdinaryText) {
    EXPECT_EQ(escapeHTML(""), "");
    EXPECT_EQ(escapeScript(""), "");
    EXPECT_EQ(escapeScript("caf\xC3\xA9 {}()%#@!~*=+-_.,:;?/|^[]"),
              "caf\xC3\xA9 {}()%#@!~*=+-_.,:;?/|^[]");
}

}  // namespace VeskLib::Test
