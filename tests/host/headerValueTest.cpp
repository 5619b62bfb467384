#include "platform/host/web/headerValue.h"

#include "platform/host/base/platformException.h"
#include "tests/support/hostileTexts.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::equalsIgnoringCase;
using Host::findParameter;
using Host::mainValue;
using Host::trim;

namespace {

// Returns "[value]" if the parameter is found. Otherwise returns "absent" or the error code of a
// refused header, followed by the unchanged `value`.
std::string find(const std::string& header, const std::string& name) {
    std::string value = "unchanged";
    try {
        const bool found = findParameter(header, name, value);
        return found ? "[" + value + "]" : "absent, " + value;
    } catch (const PException& exception) {
        return std::to_string(exception.getExceptionDetail()) + ", " + value;
    }
}

// Returns `text` as the value of a quoted parameter.
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

TEST(HeaderValueTest, findsQuotedAndUnquotedParameters) {
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

TEST(HeaderValueTest, acceptsEmptyParameter) {
    EXPECT_EQ(find("v; a=", "a"), "[]");
    EXPECT_EQ(find("v; a=; b=c", "a"), "[]");
    EXPECT_EQ(find("v; a=\"\"", "a"), "[]");
    EXPECT_EQ(find("v; a", "a"), "[]");
    EXPECT_EQ(find("v; a; b=c", "a"), "[]");
}

TEST(HeaderValueTest, prefersFirstParameterOfName) {
    EXPECT_EQ(find("v; a=1; a=2", "a"), "[1]");
    EXPECT_EQ(find("v; b; b=2; a=3", "a"), "[3]");
}

TEST(HeaderValueTest, leavesValueUnchangedIfAbsent) {
    for (const char* header : {"", "v", "a=b", "v; ab=c", "v; b=a", "v;", ";;", "v; b=\"; a=c\"",
                               "v; b=\"\\\"; a=c\"", "v; =a"}) {
        EXPECT_EQ(find(header, "a"), "absent, unchanged") << header;
    }
}

TEST(HeaderValueTest, keepsSeparatorsInQuotes) {
    EXPECT_EQ(find("v; a=\"x;y=z\"; b=c", "a"), "[x;y=z]");
    EXPECT_EQ(find("v; a=\"x;y=z\"; b=c", "b"), "[c]");
    EXPECT_EQ(find("v; a=\"x;b=z\"; b=c", "b"), "[c]");
}

TEST(HeaderValueTest, backslashEscapesOnlyQuoteAndBackslash) {
    EXPECT_EQ(find(R"(v; a="x\"y"; b=c)", "a"), R"([x"y])");
    EXPECT_EQ(find(R"(v; a="x\"y"; b=c)", "b"), "[c]");
    EXPECT_EQ(find(R"(v; a="x\\y")", "a"), R"([x\y])");
    EXPECT_EQ(find(R"(v; a="x\\"; b=c)", "b"), "[c]");
    EXPECT_EQ(find(R"(v; a="C:\path\name.dat")", "a"), R"([C:\path\name.dat])");
    EXPECT_EQ(find(R"(v; a=x\y)", "a"), R"([x\y])");
}

TEST(HeaderValueTest, unquotesEveryText) {
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(find("v; x=1; a=" + quoted(text) + "; y=2", "a"), "[" + text + "]");
        EXPECT_EQ(find("v; x=1; a=" + quoted(text) + "; y=2", "y"), "[2]");
    }
}

TEST(HeaderValueTest, rejectsBrokenQuotesInAnyParameter) {
    const std::string malformed = std::to_string(Host::REQUEST_MALFORMED);
    for (const char* header :
         {"v; a=\"", "v; a=\"b", "v; a=\"b\\\"", "v; a=\"b\\\\\"x", "v; a=\"b\"c", "v; a=\"b\" c",
          "v; a=\"b\"\"c\"", "v; a=b\"", "v; a= \"b\"", "v; b=\"; a=c", "v; b=\"x\"y; a=c"}) {
        EXPECT_EQ(find(header, "a"), malformed + ", unchanged") << header;
    }
    EXPECT_EQ(find("v; a=c; b=\"x", "a"), malformed + ", unchanged");
    EXPECT_EQ(find("v; a=\"b\" \t; c=d", "a"), "[b]");
}

TEST(HeaderValueTest, mainValuePrecedesParameters) {
    EXPECT_EQ(mainValue("text/plain"), "text/plain");
    EXPECT_EQ(mainValue(" \ttext/plain \t; a=b; c=d"), "text/plain");
    EXPECT_EQ(mainValue("a;"), "a");
    EXPECT_EQ(mainValue("; a"), "");
    EXPECT_EQ(mainValue(""), "");
}

TEST(HeaderValueTest, comparesMediaTypeIgnoringCaseAndParameters) {
    for (const char* type :
         {"multipart/form-data", "Multipart/FORM-data", " multipart/form-data",
          "multipart/form-data;boundary=x", "multipart/form-data ; boundary=x"}) {
        EXPECT_TRUE(Host::isMediaType(type, Host::MULTIPART_FORM)) << type;
        EXPECT_FALSE(Host::isMediaType(type, Host::URLENCODED_FORM)) << type;
    }
    for (const char* type : {"", ";", "multipart/form-datax", "multipart/form-data x", "multipart/",
                             "multipart/form data", "x; multipart/form-data"}) {
        EXPECT_FALSE(Host::isMediaType(type, Host::MULTIPART_FORM)) << type;
    }
}

TEST(HeaderValueTest, trimsBlanksAtEndsOnly) {
    EXPECT_EQ(trim(" \t a \t b\t "), "a \t b");
    EXPECT_EQ(trim("a"), "a");
    EXPECT_EQ(trim(" \t "), "");
    EXPECT_EQ(trim(""), "");
    EXPECT_EQ(trim("\ra\n"), "\ra\n");
}

TEST(HeaderValueTest, ignoresCaseOfLettersOnly) {
    EXPECT_TRUE(equalsIgnoringCase("Form-DATA", "fORM-data"));
    EXPECT_TRUE(equalsIgnoringCase("AZaz", "azAZ"));
    EXPECT_TRUE(equalsIgnoringCase("", ""));
    EXPECT_FALSE(equalsIgnoringCase("a", "b"));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
    EXPECT_FALSE(equalsIgnoringCase("ab", "a"));
    // The neighbours of the capitals, compared with the same characters with the lower-case bit
    // set.
    EXPECT_FALSE(equalsIgnoringCase("@", "`"));
    EXPECT_FALSE(equalsIgnoringCase("[", "{"));
    EXPECT_FALSE(equalsIgnoringCase("\r", "-"));
}

}  // namespace VeskLib::Test
