#include "platform/host/web/UrlencodedReader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"

#include <gmock/gmock.h>

namespace VeskLib::Test {

using Host::UrlencodedReader;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Fields = std::map<std::string, std::string>;

// Returns the fields of `text`, read in pieces of `size` bytes. Throws PException if it is refused.
Fields read(const std::string& text, std::size_t size = std::string::npos) {
    Fields fields;
    UrlencodedReader reader(fields);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = std::min(size, text.size() - i);
        reader.feed(std::string_view(text).substr(i, length));
        i += length;
    }
    reader.finish();
    return fields;
}

// Returns true if the text is refused as too large.
bool isTooLarge(const std::string& text) {
    try {
        read(text);
    } catch (const PException& exception) {
        EXPECT_EQ(exception.getExceptionDetail(), Host::REQUEST_TOO_LARGE);
        return true;
    }
    return false;
}

std::string repeat(const std::string& text, std::size_t count) {
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

}  // namespace

TEST(UrlencodedReaderTest, separatesAndDecodesFields) {
    EXPECT_THAT(
        read("a=1&b=x+y%20z&c=%41%62%2f%2F%00"),
        ElementsAre(Pair("a", "1"), Pair("b", "x y z"), Pair("c", std::string("Ab//\0", 5))));
    EXPECT_THAT(read("%61+b=1"), ElementsAre(Pair("a b", "1")));
    EXPECT_THAT(read("a=%C3%A9%ff"), ElementsAre(Pair("a", "\xC3\xA9\xFF")));
}

TEST(UrlencodedReaderTest, acceptsMissingNamesAndValues) {
    EXPECT_THAT(read(""), IsEmpty());
    EXPECT_THAT(read("&&&"), IsEmpty());
    EXPECT_THAT(read("a"), ElementsAre(Pair("a", "")));
    EXPECT_THAT(read("a="), ElementsAre(Pair("a", "")));
    EXPECT_THAT(read("=v"), ElementsAre(Pair("", "v")));
    EXPECT_THAT(read("&a=1&&b=2&"), ElementsAre(Pair("a", "1"), Pair("b", "2")));
}

TEST(UrlencodedReaderTest, splitsAtFirstEqualSign) {
    EXPECT_THAT(read("a=b=c=="), ElementsAre(Pair("a", "b=c==")));
    EXPECT_THAT(read("a%3Db=%26"), ElementsAre(Pair("a=b", "&")));
}

TEST(UrlencodedReaderTest, keepsInvalidEscapeVerbatim) {
    for (const char* text : {"%", "%%", "%4", "%G0", "%0G", "%zz", "% 1", "%-1", "%u0041", "100%",
                             "%/0", "%:0", "%@0", "%`0", "%g1"}) {
        EXPECT_EQ(read("a=" + std::string(text)).at("a"), text) << text;
    }
    EXPECT_EQ(read("a=%%41").at("a"), "%A");
    EXPECT_EQ(read("a=%4%41").at("a"), "%4A");
    EXPECT_EQ(read("a=%2541").at("a"), "%41");
    EXPECT_EQ(read("a=%4+1").at("a"), "%4 1");
}

TEST(UrlencodedReaderTest, decodesEveryEscape) {
    const char upper[] = "0123456789ABCDEF";
    const char lower[] = "0123456789abcdef";
    for (int value = 0; value < 256; ++value) {
        const std::string byte(1, static_cast<char>(value));
        EXPECT_EQ(read({'a', '=', '%', upper[value / 16], upper[value % 16]}).at("a"), byte);
        EXPECT_EQ(read({'a', '=', '%', lower[value / 16], lower[value % 16]}).at("a"), byte);
    }
}

TEST(UrlencodedReaderTest, doesNotDependOnPieces) {
    const std::string text = "functionID=105&hidden_status=BACKUP&n%61me=a+b%20c%&x=%4&=&&y=%e3%81";
    const Fields whole = read(text);
    EXPECT_EQ(whole.size(), 6u);
    for (const std::size_t size : {1U, 2U, 3U, 4U}) {
        EXPECT_EQ(read(text, size), whole) << size;
    }
    for (std::size_t split = 0; split <= text.size(); ++split) {
        Fields fields;
        UrlencodedReader reader(fields);
        reader.feed(text.substr(0, split));
        reader.feed("");
        reader.feed(text.substr(split));
        reader.finish();
        EXPECT_EQ(fields, whole) << split;
    }
}

TEST(UrlencodedReaderTest, prefersFirstFieldOfName) {
    EXPECT_THAT(read("a=1&a=2&b=3&%61=4"), ElementsAre(Pair("a", "1"), Pair("b", "3")));
}

TEST(UrlencodedReaderTest, keepsExistingFields) {
    Fields fields = {{"a", "form"}};
    UrlencodedReader reader(fields);
    reader.feed("a=query&b=query");
    reader.finish();
    EXPECT_THAT(fields, ElementsAre(Pair("a", "form"), Pair("b", "query")));
}

TEST(UrlencodedReaderTest, acceptsNameUpToLimit) {
    const std::size_t limit = Host::FormLimits::NAME_LENGTH;
    EXPECT_EQ(read(std::string(limit, 'n') + "=1").size(), 1u);
    EXPECT_TRUE(isTooLarge(std::string(limit + 1, 'n') + "=1"));
    EXPECT_EQ(read(repeat("%41", limit) + "=1").begin()->first, std::string(limit, 'A'));
    EXPECT_TRUE(isTooLarge(repeat("%41", limit) + "n=1"));
    EXPECT_TRUE(isTooLarge(std::string(limit + 1, 'n')));
}

TEST(UrlencodedReaderTest, acceptsValueUpToLimit) {
    const std::size_t limit = Host::FormLimits::VALUE_LENGTH;
    EXPECT_EQ(read("a=" + std::string(limit, 'v')).at("a").size(), limit);
    EXPECT_TRUE(isTooLarge("a=" + std::string(limit + 1, 'v')));
    EXPECT_EQ(read("a=" + repeat("%41", limit)).at("a"), std::string(limit, 'A'));
    EXPECT_TRUE(isTooLarge("a=" + repeat("%41", limit) + "v"));
    EXPECT_TRUE(isTooLarge("a=" + std::string(limit + 1, 'v') + "&b=1"));
}

TEST(UrlencodedReaderTest, acceptsFieldsUpToLimit) {
    const std::size_t limit = Host::FormLimits::FIELDS;
    EXPECT_FALSE(isTooLarge(repeat("a=1&", limit)));
    EXPECT_TRUE(isTooLarge(repeat("a=1&", limit + 1)));
    EXPECT_TRUE(isTooLarge(repeat("=&", limit + 1)));
    EXPECT_FALSE(isTooLarge(repeat("&", limit * 10)));
}

TEST(UrlencodedReaderTest, acceptsFormOfAllPartitions) {
    std::string form = "hidden_status=2&functionID=106&message=";
    for (int partition = 0; partition < 256; ++partition) {
        const std::string number = std::to_string(partition);
        form.append("&pid").append(number).append("=").append(number);
        form.append("&check_box=").append(number);
    }
    EXPECT_FALSE(isTooLarge(form));
    EXPECT_LE(form.size(), Host::FormLimits::BODY_LENGTH);
}

TEST(UrlencodedReaderTest, rejectsEndlessFieldEarly) {
    for (const std::string start : {"", "a="}) {
        Fields fields;
        UrlencodedReader reader(fields);
        reader.feed(start);
        const auto feedForEver = [&reader] {
            for (int i = 0; i < 100000; ++i) {
                reader.feed("xxxxxxxx");
            }
        };
        EXPECT_THROW(feedForEver(), PException);
    }
}

}  // namespace VeskLib::Test
