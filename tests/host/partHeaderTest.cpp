#include "platform/host/web/partHeader.h"

#include "tests/host/refusal.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using Host::parsePartHeader;
using Host::PartHeader;

namespace {

// Returns "name" for a field, "name|file name" for a file, or the refusal.
std::string parse(const std::string& lines) {
    try {
        const PartHeader header = parsePartHeader(lines);
        EXPECT_TRUE(header.isFile || header.fileName.empty());
        return header.name + (header.isFile ? "|" + header.fileName : "");
    } catch (const PException& exception) {
        return refused(exception.getExceptionDetail());
    }
}

std::string parseDisposition(const std::string& value) {
    return parse("\r\nContent-Disposition:" + value);
}

}  // namespace

TEST(PartHeaderTest, recognizesFileByFileName) {
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\""), "a");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename=\"b.dat\""), "a|b.dat");
    EXPECT_EQ(parseDisposition(" form-data; filename=\"b.dat\"; name=\"a\""), "a|b.dat");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename=\"\""), "a|");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a\"; filename"), "a|");
    EXPECT_EQ(parseDisposition(" form-data; name=\"a; filename=b\""), "a; filename=b");
    EXPECT_EQ(parseDisposition(" form-data; name=\"filename=b\""), "filename=b");
}

TEST(PartHeaderTest, findsHeadersInAnyCaseAndOrder) {
    EXPECT_EQ(parse("\r\nContent-Type: x\r\nCONTENT-disposition: Form-Data; NAME=a\r\nX:"), "a");
    EXPECT_EQ(parse("\r\nContent-Disposition : form-data;name=a"), "a");
    EXPECT_EQ(parse("\r\nX: a: b\r\nContent-Disposition: form-data; name=a"), "a");
    EXPECT_EQ(parse("\r\nX-Content-Disposition: form-data; name=a"), MALFORMED);
}

TEST(PartHeaderTest, rejectsBrokenQuotesAnywhere) {
    for (const char* value :
         {"name=\"a", "name=\"a\\\"", "name=\"a\"b", "name=\"a\" b; filename=c", "name=\"a\"\"b\"",
          "name=a\"b", "name=a; filename=\"b", "name=a; filename=\"b\"c", "name=a; other=\"b",
          "filename=\"b; name=a"}) {
        EXPECT_EQ(parseDisposition(std::string(" form-data; ") + value), MALFORMED) << value;
    }
}

TEST(PartHeaderTest, acceptsOnlyFormData) {
    for (const char* value : {"", " ", " attachment; name=a", " form-datax; name=a",
                              " xform-data; name=a", "; name=a", " name=a", " form data; name=a"}) {
        EXPECT_EQ(parseDisposition(value), MALFORMED) << value;
    }
}

TEST(PartHeaderTest, rejectsInvalidSecondDisposition) {
    const std::string first = "\r\nContent-Disposition: form-data; name=a; filename=b";
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: form-data"), MALFORMED);
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: attachment; name=c"), MALFORMED);
    EXPECT_EQ(parse(first + "\r\nContent-Disposition: form-data; name=c"), "c");
}

TEST(PartHeaderTest, rejectsMalformedLines) {
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
