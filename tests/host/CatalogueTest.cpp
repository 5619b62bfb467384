#include "platform/host/text/Catalogue.h"

#include "tests/support/ChildProcess.h"

#include <VeskLib/Gui/MessageMgr.h>

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Gui::MessageMgr;
using Host::ENGLISH;
using Host::findText;
using Host::TextSet;
using testing::EndsWith;
using testing::Not;
using testing::StartsWith;

const int JAPANESE = 1;

TEST(CatalogueTest, keepsSetsSeparate) {
    ASSERT_NE(findText(ENGLISH, TextSet::MESSAGES, 12), nullptr);
    ASSERT_NE(findText(ENGLISH, TextSet::CAPTIONS, 131), nullptr);
    ASSERT_NE(findText(ENGLISH, TextSet::TRACE, 107), nullptr);
    EXPECT_EQ(findText(ENGLISH, TextSet::CAPTIONS, 12), nullptr);
    EXPECT_EQ(findText(ENGLISH, TextSet::MESSAGES, 107), nullptr);
    EXPECT_EQ(findText(ENGLISH, TextSet::TRACE, 12), nullptr);
}

TEST(CatalogueTest, findsTextInEachLanguage) {
    EXPECT_STREQ(findText(ENGLISH, TextSet::CAPTIONS, 1006), "Back up");
    EXPECT_STREQ(findText(JAPANESE, TextSet::CAPTIONS, 132), "\xE7\x95\xAA\xE5\x8F\xB7");
    EXPECT_STREQ(findText(99, TextSet::CAPTIONS, 1006), "Back up");
    EXPECT_STREQ(findText(-1, TextSet::CAPTIONS, 1006), "Back up");
}

TEST(CatalogueTest, findsTagAndNameInEachLanguage) {
    for (int language = 0; language < std::ssize(Host::languages()); ++language) {
        const auto& [tag, name] = Host::languages()[static_cast<std::size_t>(language)];
        EXPECT_STREQ(findText(language, TextSet::CAPTIONS, 9005), tag);
        EXPECT_STREQ(findText(language, TextSet::CAPTIONS, 9006), name);
    }
}

TEST(CatalogueTest, returnsNullForUnknownNumber) {
    for (const int number : {-1, 0, 1, 32767, 1000000}) {
        EXPECT_EQ(findText(ENGLISH, TextSet::CAPTIONS, number), nullptr) << number;
        EXPECT_EQ(findText(JAPANESE, TextSet::CAPTIONS, number), nullptr) << number;
    }
}

TEST(CatalogueTest, returnsSamePointerAgain) {
    EXPECT_EQ(findText(ENGLISH, TextSet::MESSAGES, 72), findText(ENGLISH, TextSet::MESSAGES, 72));
}

TEST(CatalogueTest, prefersTextOfCode) {
    const std::string other = MessageMgr(ENGLISH).getMessage(71, 0);
    EXPECT_THAT(MessageMgr(ENGLISH).getMessage(71, 1602), Not(StartsWith(other)));
    EXPECT_THAT(MessageMgr(ENGLISH).getMessage(71, 1999), StartsWith(other));
    EXPECT_THAT(MessageMgr(ENGLISH).getMessage(71, -1), StartsWith(other));
    EXPECT_NE(MessageMgr(JAPANESE).getMessage(71, 1602), MessageMgr(ENGLISH).getMessage(71, 1602));
}

TEST(CatalogueTest, appendsNumberAndCode) {
    EXPECT_THAT(MessageMgr(ENGLISH).getMessage(72, 1539), EndsWith(" [72-1539]"));
}

TEST(CatalogueTest, namesNumbersOfTextsWithoutCatalogues) {
    const ChildResult result =
        runProgram({PRINT_TEXTS}, {.environment = {{"BOARD_ROOT", "/nonexistent"}}, .input = {}});
    EXPECT_EQ(result.output,
              "Text 72 is missing from the message catalogue. [72-5]\n"
              "Text 1006 is missing.\n"
              "Text 20011 is missing from the message catalogue.\n"
              "none\n")
        << result.errors;
}

}  // namespace VeskLib::Test
