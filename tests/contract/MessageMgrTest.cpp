#include <VeskLib/Gui/MessageMgr.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace VeskLib::Test {

using Gui::MessageMgr;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

const int ENGLISH = 0;
const int JAPANESE = 1;
const int UNKNOWN_NUMBER = 32001;

// Every number that the pages use.
const int MESSAGES[] = {12, 30, 33, 45, 46, 63, 64, 70, 71, 72, 73, 250, 293, 303, 353, 354};
const int CAPTIONS[] = {131,  132,  394,  499,  971,  973,  986,  1002,
                        1003, 1004, 1005, 1006, 1356, 1357, 1358, 1359};

std::string message(int language, int number) {
    return MessageMgr(language).getMessage(number, 0);
}

std::string caption(int language, int number) {
    return MessageMgr(language).getString(number);
}

// Returns the replacement for a missing text `number`, made from the replacement for
// UNKNOWN_NUMBER.
std::string missing(std::string textOfUnknown, int number) {
    const std::string unknown = std::to_string(UNKNOWN_NUMBER);
    return textOfUnknown.replace(textOfUnknown.find(unknown), unknown.size(),
                                 std::to_string(number));
}

bool isPrintableASCII(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](unsigned char byte) { return byte >= 0x20 && byte < 0x7F; });
}

bool containsControls(const std::string& text) {
    return std::any_of(text.begin(), text.end(),
                       [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; });
}

using Texts = std::function<std::string(int language, int number)>;

void expectText(const Texts& texts, int number) {
    SCOPED_TRACE(number);
    const std::string english = texts(ENGLISH, number);
    const std::string japanese = texts(JAPANESE, number);
    EXPECT_NE(english, missing(texts(ENGLISH, UNKNOWN_NUMBER), number));
    EXPECT_NE(japanese, missing(texts(JAPANESE, UNKNOWN_NUMBER), number));
    EXPECT_THAT(english, Not(IsEmpty()));
    EXPECT_TRUE(isPrintableASCII(english)) << english;
    EXPECT_FALSE(isPrintableASCII(japanese)) << japanese;
    EXPECT_FALSE(containsControls(japanese)) << japanese;
    EXPECT_EQ((english + japanese).find("<br>"), std::string::npos);
}

}  // namespace

TEST(MessageMgrTest, hasEveryMessageInBothLanguages) {
    for (const int number : MESSAGES) {
        expectText(message, number);
    }
}

TEST(MessageMgrTest, hasEveryCaptionInBothLanguages) {
    for (const int number : CAPTIONS) {
        expectText(caption, number);
    }
}

TEST(MessageMgrTest, numbersMessagesAndCaptionsSeparately) {
    EXPECT_NE(message(ENGLISH, 12), caption(ENGLISH, 12));
    EXPECT_NE(message(ENGLISH, 131), caption(ENGLISH, 131));
}

TEST(MessageMgrTest, appendsCodeToMessage) {
    for (const int language : {ENGLISH, JAPANESE}) {
        const std::string plain = message(language, 72);
        const std::string coded = MessageMgr(language).getMessage(72, 1539);
        EXPECT_THAT(coded, StartsWith(plain));
        EXPECT_THAT(coded.substr(plain.size()), HasSubstr("1539"));
    }
}

TEST(MessageMgrTest, differentCodesGiveDifferentTexts) {
    const MessageMgr messages(ENGLISH);
    EXPECT_NE(messages.getMessage(72, 1047), messages.getMessage(72, 1048));
    EXPECT_NE(messages.getMessage(72, -1), messages.getMessage(72, 1));
}

TEST(MessageMgrTest, namesUnknownNumber) {
    EXPECT_THAT(message(ENGLISH, UNKNOWN_NUMBER), HasSubstr("32001"));
    EXPECT_THAT(caption(JAPANESE, UNKNOWN_NUMBER), HasSubstr("32001"));
}

TEST(MessageMgrTest, usesEnglishForUnknownLanguage) {
    for (const int language : {-1, 99}) {
        EXPECT_EQ(message(language, 72), message(ENGLISH, 72));
        EXPECT_EQ(caption(language, 1006), caption(ENGLISH, 1006));
    }
}

TEST(MessageMgrTest, twoLanguagesCanBeUsedAtOnce) {
    const MessageMgr english(ENGLISH);
    const MessageMgr japanese(JAPANESE);
    EXPECT_EQ(english.getString(1006), caption(ENGLISH, 1006));
    EXPECT_EQ(japanese.getString(1006), caption(JAPANESE, 1006));
    EXPECT_NE(english.getString(1006), japanese.getString(1006));
}

}  // namespace VeskLib::Test
