#include "board/web/utf8.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

namespace {

using namespace Board;

TEST(utf8, wellFormedTextIsPrintable) {
    for (const std::string text :
         {"", " ", "~", "\xC2\xA0", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
          "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(isPrintableUTF8(text)) << percentEncode(text);
    }
}

TEST(utf8, controlCharactersAreNotPrintable) {
    for (unsigned int control = 1; control < 0x20; ++control) {
        EXPECT_FALSE(isPrintableUTF8(std::string(1, static_cast<char>(control)))) << control;
    }
    EXPECT_FALSE(isPrintableUTF8(std::string(1, '\0')));
    EXPECT_FALSE(isPrintableUTF8("\x7F"));
    EXPECT_FALSE(isPrintableUTF8("\xC2\x80"));
    EXPECT_FALSE(isPrintableUTF8("\xC2\x9F"));
}

TEST(utf8, malformedTextIsNotPrintable) {
    for (const std::string text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x80\x80", "\xE0\x9F\xBF",
          "\xE3\x81", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x9F\x98",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF", "a\xC3\xA4\xE3"}) {
        EXPECT_FALSE(isPrintableUTF8(text)) << percentEncode(text);
    }
}

TEST(utf8, replacesEachNonASCIICharacterByOne) {
    EXPECT_EQ(replaceNonASCII("a\xC3\xA4z \xE7\x89\x88\xF0\x9F\x98\x80.", '_'), "a_z __.");
}

TEST(utf8, encodesAllButUnreservedCharacters) {
    EXPECT_EQ(percentEncode("aZ09-._"), "aZ09-._");
    EXPECT_EQ(percentEncode("a b%\"\xC3\xA4~'"), "a%20b%25%22%C3%A4%7E%27");
}

TEST(utf8, recognizesASCII) {
    EXPECT_TRUE(isASCII("\x01 abc\x7F"));
    EXPECT_FALSE(isASCII("ab\xC3\xA4"));
}

}  // namespace

}  // namespace VeskLib::Test
