#include "platform/host/web/partHeader.h"

#include "platform/host/base/platformException.h"
#include "tests/support/hostileTexts.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::findParameter;
using Host::parsePartHeader;
using Host::PartHeader;

namespace {

// "[value]", or "absent" with `value` as it was.
std::string find(const std::string& header, const std::string& name) {
    std::string value = "unchanged";
    const bool found = findParameter(header, name, value);
    return found ? "[" + value + "]" : "absent, " + value;
}

// "name", or "name|file name" of a file; the error code of a refused one.
std::string parse(const std::string& lines) {
    try {
        const PartHeader header = parsePartHeader(lines);
        return header.name + (header.isFile ? "|" + header.fileName : "");
    } catch (const PException& exception) {
        return std::to_string(exception.getExceptionDetail());
    }
}

std::string parseDisposition(const std::string& value) {
    return parse("\r\nContent-Disposition:" + value);
}

const std::string MALFORMED = std::to_string(Host::REQUEST_MALFORMED);

// `text` as a quoted parameter holds it.
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            result += '\\';
        }
        result += character;
    }
    return result + '"';
}

}  // namespace

TEST(PartHeaderTest, aParameterStandsWithOrWithoutQuotes) {
    EXPECT_EQ(find("v; a=b", "a"), "[b]");
    EXPECT_EQ(find("v;a=b;c=d", "c"), "[d]");
    EXPECT_EQ(find("v; a=\"b c\"; c=d", "a"), "[b c]");
    EXPECT_EQ(find("v; a=\"b\"; c=d", "c"), "[d]");
    EXPECT_EQ(find("v; a=b c ; d=e", "a"), "[b c]");
    EXPECT_EQ(find("v;\ta=b\t", "a"), "[b]");
    EXPECT_EQ(find("v; a =b", "a"), "[b]");
    EXPECT_EQ(find("v; A=B", "a"), "[B]");
    EXPECT_EQ(find("v; a=b=c", "a"), "[b=c]");
    EXPECT_EQ(find("; a=b", "a"), "[b]");
}

TEST(PartHeaderTest, aParameterMayBeEmpty) {
    EXPECT_EQ(find("v; a=", "a"), "[]");
    EXPECT_EQ(find("v; a=; b=c", "a"), "[]");
    EXPECT_EQ(find("v; a=\"\"", "a"), "[]");
    EXPECT_EQ(find("v; a", "a"), "[]");
    EXPECT_EQ(find("v; a; b=c", "a"), "[]");
}

TEST(PartHeaderTest, theFirstParameterOfANameCounts) {
    EXPECT_EQ(find("v; a=1; a=2", "a"), "[1]");
    EXPECT_EQ(find("v; b; b=2; a=3", "a"), "[3]");
}

TEST(PartHeaderTest, anAbsentParameterLeavesTheValueAsItIs) {
    for (const char* header : {"", "v", "a=b", "v; ab=c", "v; b=a", "v;", ";;", "v; b=\"; a=c\"",
                               "v; b=\"\\\"; a=c\"", "v; =a"}) {
        EXPECT_EQ(find(header, "a"), "absent, unchanged") << header;
    }
}

TEST(PartHeaderTest, aQuotedTextMayHoldWhatSeparates) {
    EXPECT_EQ(find("v; a=\"x;y=z\"; b=c", "a"), "[x;y=z]");
    EXPECT_EQ(find("v; a=\"x;y=z\"; b=c", "b"), "[c]");
    EXPECT_EQ(find("v; a=\"x;b=z\"; b=c", "b"), "[c]");
}

TEST(PartHeaderTest, aBackslashProtectsAQuoteAndABackslashOnly) {
    EXPECT_EQ(find(R"(v; a="x\"y"; b=c)", "a"), R"([x"y])");
    EXPECT_EQ(find(R"(v; a="x\"y"; b=c)", "b"), "[c]");
    EXPECT_EQ(find(R"(v; a="x\\y")", "a"), R"([x\y])");
    EXPECT_EQ(find(R"(v; a="x\\"; b=c)", "b"), "[c]");
    EXPECT_EQ(find(R"(v; a="C:\path\name.dat")", "a"), R"([C:\path\name.dat])");
    EXPECT_EQ(find(R"(v; a="\)", "a"), R"([\])");
    EXPECT_EQ(find(R"(v; a=x\"y)", "a"), R"([x\"y])");
}

TEST(PartHeaderTest, everyTextSurvivesItsQuotes) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(find("v; x=1; a=" + quoted(text) + "; y=2", "a"), "[" + text + "]");
        EXPECT_EQ(find("v; x=1; a=" + quoted(text) + "; y=2", "y"), "[2]");
    }
}

TEST(PartHeaderTest, aPartIsAFileWhenItNamesOne) {
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\""), "a");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename=\"b.dat\""), "a|b.dat");
    EXPECT_EQ(parseDisposition(" form-data; filename=\"b.dat\"; name=\"a\""), "a|b.dat");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename=\"\""), "a|");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename"), "a|");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a; filename=b\""), "a; filename=b");
    EXPECT_EQ(parseDisposition(" form-data; name=\"filename=b\""), "filename=b");
}

TEST(PartHeaderTest, headersAreFoundWhateverTheirCaseAndOrder) {
    EXPECT_EQ(parse("\r\nContent-Type: x\r\nCONTENT-disposition: Form-Data; NAME=a\r\nX:"), "a");
    EXPECT_EQ(parse("\r\nContent-Disposition : form-data;name=a"), "a");
    EXPECT_EQ(parse("\r\nX: a: b\r\nContent-Disposition: form-data; name=a"), "a");
    EXPECT_EQ(parse("\r\nX-Content-Disposition: form-data; name=a"), MALFORMED);
}

TEST(PartHeaderTest, onlyFormDataIsTaken) {
    for (const char* value : {"", " ", " attachment; name=a", " form-datax; name=a",
                              " xform-data; name=a", "; name=a", " name=a", " form data; name=a"}) {
        EXPECT_EQ(parseDisposition(value), MALFORMED) << value;
    }
}

TEST(PartHeaderTest, theLastOfTwoDispositionsMustBeSoundAsWell) {
    const std::string first = "\r\nContent-Disposition: form-data; name=a; filename=b";
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: form-data"), MALFORMED);
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: attachment; name=c"), MALFORMED);
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: form-data; name=c"), "c");
}

TEST(PartHeaderTest, malformedLinesAreRefused) {
    const std::string disposition = "\r\nContent-Disposition: form-data; name=a";
    EXPECT_EQ(parse(disposition), "a");
    for (const char* line :
         {"\r\n folded", "\r\n\tfolded", "\r\n folded: x", "\r\nno colon", "\r\n\r\n", "\r\n"}) {
        EXPECT_EQ(parse(disposition + line), MALFORMED) << line;
        EXPECT_EQ(parse(line + disposition), MALFORMED) << line;
    }
    EXPECT_EQ(parse(""), MALFORMED);
}

}  // namespace VeskLib::Test
