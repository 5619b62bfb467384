#include <VeskLib/lmsg_getmsg.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace VeskLib::Test {

using testing::HasSubstr;

namespace {

const std::size_t SIZE = 256;
const std::size_t GUARD_SIZE = 64;
const char GUARD = '\x5A';

// A buffer of the program's size, with guard bytes before and after it.
class GuardedBuffer {
public:
    GuardedBuffer() { bytes.fill(GUARD); }

    char* start() { return bytes.data() + GUARD_SIZE; }
    std::string text() { return start(); }

    bool isUntouchedAround() const {
        const auto isGuard = [](char byte) { return byte == GUARD; };
        return std::all_of(bytes.begin(), bytes.begin() + GUARD_SIZE, isGuard) &&
               std::all_of(bytes.end() - GUARD_SIZE, bytes.end(), isGuard);
    }

private:
    std::array<char, GUARD_SIZE + SIZE + GUARD_SIZE> bytes;
};

// Returns the text of the number with these arguments.
template <typename... Arguments>
std::string format(int number, Arguments... arguments) {
    GuardedBuffer buffer;
    EXPECT_EQ(lmsg_getmsg(number, buffer.start(), arguments...), buffer.start());
    EXPECT_TRUE(buffer.isUntouchedAround());
    EXPECT_LT(std::strlen(buffer.start()), SIZE);
    return buffer.text();
}

}  // namespace

TEST(LmsgGetmsgTest, traceTextsContainTheirArguments) {
    EXPECT_THAT(format(107, "the screen information"), HasSubstr("the screen information"));
    EXPECT_THAT(format(20003, "EFIBackupPage::makeConfigPage"),
                HasSubstr("EFIBackupPage::makeConfigPage"));
    const std::string twoTexts = format(20010, "first text", "second text");
    EXPECT_THAT(twoTexts, HasSubstr("first text"));
    EXPECT_THAT(twoTexts, HasSubstr("second text"));
    const std::string textAndErrno = format(20011, "remove(/var/tmp/x)", 13);
    EXPECT_THAT(textAndErrno, HasSubstr("remove(/var/tmp/x)"));
    EXPECT_THAT(textAndErrno, HasSubstr("13"));
    EXPECT_THAT(format(20019, "DifferentBufferSize"), HasSubstr("DifferentBufferSize"));
    EXPECT_THAT(format(20020, "Authorization required."), HasSubstr("Authorization required."));
    const std::string textAndNumber = format(20034, "Illegal query string", -105);
    EXPECT_THAT(textAndNumber, HasSubstr("Illegal query string"));
    EXPECT_THAT(textAndNumber, HasSubstr("-105"));
}

TEST(LmsgGetmsgTest, differentNumbersGiveDifferentTexts) {
    EXPECT_NE(format(20003, "x"), format(20020, "x"));
    EXPECT_NE(format(107, "x"), format(20020, "x"));
}

TEST(LmsgGetmsgTest, cutsLongArgumentToFitBuffer) {
    const std::string argument(1000, 'a');
    for (const int number : {107, 20003, 20019, 20020}) {
        SCOPED_TRACE(number);
        const std::string text = format(number, argument.c_str());
        EXPECT_LT(text.size(), SIZE);
        EXPECT_THAT(text, HasSubstr(std::string(100, 'a')));
    }
    EXPECT_LT(format(20034, argument.c_str(), 1).size(), SIZE);
}

TEST(LmsgGetmsgTest, fillsButDoesNotOverflowBuffer) {
    const std::size_t own = format(20020, "").size();
    for (std::size_t length = SIZE - own - 3; length <= SIZE - own + 3; ++length) {
        SCOPED_TRACE(length);
        const std::string argument(length, 'b');
        EXPECT_EQ(format(20020, argument.c_str()).size(), std::min(own + length, SIZE - 1));
    }
}

TEST(LmsgGetmsgTest, doesNotExpandConversionsInArgument) {
    EXPECT_THAT(format(20020, "%s%s%n%1000d"), HasSubstr("%s%s%n%1000d"));
}

TEST(LmsgGetmsgTest, namesUnknownNumber) {
    GuardedBuffer buffer;
    EXPECT_EQ(lmsg_getmsg(31999, buffer.start()), buffer.start());
    EXPECT_THAT(buffer.text(), HasSubstr("31999"));
    EXPECT_TRUE(buffer.isUntouchedAround());
}

}  // namespace VeskLib::Test
