#include "platform/host/web/MultipartReader.h"

#include "platform/host/web/FormLimits.h"
#include "tests/host/multipartBody.h"
#include "tests/host/refusal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace VeskLib::Test {

using Host::MultipartReader;
using Host::FormLimits::BOUNDARY_LENGTH;
using Host::FormLimits::FIELDS;
using Host::FormLimits::FILE_NAME_LENGTH;
using Host::FormLimits::NAME_LENGTH;
using Host::FormLimits::PART_HEADER_LENGTH;

namespace {

// Records its calls: "<name>value</>" for a field, "<name|file name>bytes</>" for a file.
class Recorder : public Host::MultipartHandler {
public:
    void beginPart(const std::string& name, const std::string* fileName) override {
        text += "<" + name + (fileName == nullptr ? "" : "|" + *fileName) + ">";
    }

    void takeBytes(std::string_view bytes) override {
        EXPECT_FALSE(bytes.empty());
        text += bytes;
    }

    void endPart() override { text += "</>"; }

    std::string text;
};

// Returns the recorded parts of a body that arrives in these pieces, followed by the refusal if
// there is one.
std::string readPieces(const std::vector<std::string_view>& pieces,
                       const std::string& contentType = MULTIPART_TYPE) {
    Recorder recorder;
    try {
        MultipartReader reader(contentType, recorder);
        for (const std::string_view piece : pieces) {
            reader.feed(piece);
        }
        reader.finish();
    } catch (const PException& exception) {
        recorder.text += refused(exception.getExceptionDetail());
    }
    return recorder.text;
}

std::vector<std::string_view> piecesOf(std::string_view body, std::size_t size) {
    std::vector<std::string_view> pieces;
    for (std::size_t start = 0; start < body.size(); start += size) {
        pieces.push_back(body.substr(start, size));
    }
    return pieces;
}

// Returns the recorded parts of a body. Expects the same parts however the body is split.
std::string readEachWay(const std::string& body, const std::string& contentType = MULTIPART_TYPE) {
    const std::string_view view = body;
    const std::string whole = readPieces({view}, contentType);
    for (const std::size_t size : {1, 2, 4}) {
        EXPECT_EQ(readPieces(piecesOf(view, size), contentType), whole) << "pieces of " << size;
    }
    for (std::size_t cut = 0; cut <= view.size(); ++cut) {
        EXPECT_EQ(readPieces({view.substr(0, cut), view.substr(cut)}, contentType), whole)
            << "split at " << cut;
    }
    return whole;
}

std::string readParts(const std::string& parts) {
    return readEachWay(parts + LAST_BOUNDARY);
}

// Returns the recorded parts of a body with one part that has these header lines.
std::string readHeader(const std::string& lines) {
    return readParts(partOf(lines, "content"));
}

std::string headerOfSize(std::size_t size) {
    std::string lines = "Content-Disposition: form-data; name=a\r\nX-Padding: ";
    // The last line break is not counted: it belongs to the end of the header.
    lines.append(size - lines.size(), 'x');
    return lines + "\r\n";
}

}  // namespace

TEST(MultipartReaderTest, readsFieldsAndFilesInOrder) {
    const std::string binary("\0\r\n\n\r\xFF--\r\n\r\n", 12);
    EXPECT_EQ(readParts(fieldPart("status", "1") + filePart("file", "a.dat", binary) +
                        fieldPart("empty", "") + fieldPart("lines", "one\r\ntwo\r\n")),
              "<status>1</><file|a.dat>" + binary + "</><empty></><lines>one\r\ntwo\r\n</>");
}

TEST(MultipartReaderTest, acceptsBodyWithoutParts) {
    EXPECT_EQ(readEachWay("--boundary--\r\n"), "");
    EXPECT_EQ(readEachWay("--boundary--"), "");
}

TEST(MultipartReaderTest, acceptsRepeatedFieldName) {
    EXPECT_EQ(readParts(fieldPart("a", "1") + fieldPart("a", "2")), "<a>1</><a>2</>");
}

TEST(MultipartReaderTest, acceptsFileWithoutNameAndBytes) {
    EXPECT_EQ(readParts(filePart("file", "", "")), "<file|></>");
}

TEST(MultipartReaderTest, skipsPreamble) {
    const std::string parts = fieldPart("a", "1") + LAST_BOUNDARY;
    for (const std::string preamble :
         {"preamble\r\n", "\r\n", "\r\n\r\n", "--bound\r\n", "x--boundary\r\n", "--\r\n-\r\n",
          "Content-Disposition: form-data; name=\"b\"\r\n\r\n2\r\n", "\r\n--boundar\r\n"}) {
        EXPECT_EQ(readEachWay(preamble + parts), "<a>1</>") << preamble;
    }
}

TEST(MultipartReaderTest, requiresBoundaryAtLineStart) {
    const std::string parts = fieldPart("a", "1") + LAST_BOUNDARY;
    // The part's boundary does not start a line, so everything before the last boundary is
    // preamble.
    EXPECT_EQ(readEachWay("x" + parts), "");
    EXPECT_EQ(readEachWay("\n" + parts), "");
}

TEST(MultipartReaderTest, skipsEpilogue) {
    const std::string parts = fieldPart("a", "1");
    for (const std::string epilogue :
         {"", "\r\n", "junk", "\r\nepilogue", "\r\n--boundary", "\r\n--boundaryjunk",
          "\r\n--boundary\r\nContent-Disposition: form-data; "
          "name=\"b\"\r\n\r\n2\r\n--boundary--"}) {
        EXPECT_EQ(readEachWay(parts + "--boundary--" + epilogue), "<a>1</>") << epilogue;
    }
}

TEST(MultipartReaderTest, keepsPartialBoundaryInContent) {
    const std::string delimiter = "\r\n--boundary";
    for (std::size_t length = 1; length < delimiter.size(); ++length) {
        const std::string start = delimiter.substr(0, length);
        for (const std::string& content :
             {start, start + start, start + "x", "x" + start + start + "z", start + delimiter[0]}) {
            EXPECT_EQ(readParts(filePart("f", "n", content)), "<f|n>" + content + "</>");
        }
    }
    for (const std::string content :
         {"--boundary", "--boundary--", "\n--boundary", "\r--boundary--", "\r\n --boundary",
          "\r\n--Boundary", "\r\n--bound\r\n--bound--", "\r\r\n--boundarx", "\r\n\r\n--bound"}) {
        EXPECT_EQ(readParts(filePart("f", "n", content)), "<f|n>" + content + "</>");
    }
}

TEST(MultipartReaderTest, keepsOtherBoundaryInContent) {
    const std::string body =
        "--b\r\nContent-Disposition: form-data; name=a\r\n\r\n\r\n--a\r\n--\r\n--b--";
    EXPECT_EQ(readEachWay(body, "multipart/form-data; boundary=b"), "<a>\r\n--a\r\n--</>");
}

TEST(MultipartReaderTest, parsesBoundaryParameter) {
    const std::string body = fieldPart("a", "1") + LAST_BOUNDARY;
    for (const std::string parameters :
         {"; boundary=boundary", ";boundary=boundary", "; boundary=\"boundary\"",
          "; BOUNDARY=boundary", "; charset=UTF-8; boundary=boundary",
          "; boundary=boundary; charset=UTF-8", "; boundary=\"boundary\"; charset=UTF-8",
          "; x=\"; boundary=wrong\"; boundary=boundary", "; boundary=boundary ",
          "; boundary=\"bo\\undary\"; boundary=later"}) {
        const std::string expected =
            parameters.find('\\') == std::string::npos ? "<a>1</>" : MALFORMED;
        EXPECT_EQ(readPieces({body}, "multipart/form-data" + parameters), expected) << parameters;
    }
}

TEST(MultipartReaderTest, unquotesBoundary) {
    const std::string body =
        "--a;b \"c\"\r\nContent-Disposition: form-data; name=a\r\n\r\n1\r\n"
        "--a;b \"c\"--";
    EXPECT_EQ(readEachWay(body, "multipart/form-data; boundary=\"a;b \\\"c\\\"\""), "<a>1</>");
}

TEST(MultipartReaderTest, rejectsUnusableBoundary) {
    for (const std::string& parameters :
         {std::string(), std::string(";"), std::string("; boundary"), std::string("; boundary="),
          std::string("; boundary=; x=y"), std::string("; boundary=\"\""),
          std::string("; xboundary=boundary"), std::string("; boundaryx=boundary"),
          std::string(" boundary=boundary"), std::string("; boundary=\"boun\r\ndary\""),
          std::string("; boundary=\"boundary\n\""),
          "; boundary=" + std::string(BOUNDARY_LENGTH + 1, 'b')}) {
        EXPECT_EQ(readPieces({}, "multipart/form-data" + parameters), MALFORMED) << parameters;
    }
}

TEST(MultipartReaderTest, acceptsBoundaryUpToLimit) {
    const std::string boundary(BOUNDARY_LENGTH, 'b');
    const std::string body = "--" + boundary +
                             "\r\nContent-Disposition: form-data; name=a\r\n\r\n1\r\n--" +
                             boundary + "--";
    EXPECT_EQ(readEachWay(body, "multipart/form-data; boundary=" + boundary), "<a>1</>");
}

TEST(MultipartReaderTest, rejectsTruncatedForm) {
    const std::string body =
        "preamble\r\n" + fieldPart("a", "1") + filePart("f", "n", "bytes") + "--boundary--";
    for (std::size_t length = 0; length < body.size(); ++length) {
        const std::string found = readEachWay(body.substr(0, length));
        EXPECT_TRUE(found.ends_with(MALFORMED)) << length << ": " << found;
    }
    EXPECT_EQ(readEachWay(body), "<a>1</><f|n>bytes</>");
}

TEST(MultipartReaderTest, rejectsJunkAfterBoundary) {
    const std::string part = "Content-Disposition: form-data; name=b\r\n\r\n2\r\n--boundary--";
    for (const std::string junk : {"x\r\n", " \r\n", "\t\r\n", "-\r\n", "-x\r\n", "\n", "\r\r\n",
                                   "y--\r\n", " --\r\n", "\r", "\rx"}) {
        EXPECT_EQ(readEachWay("--boundary" + junk + part), MALFORMED) << junk;
        EXPECT_EQ(readEachWay(fieldPart("a", "1") + "--boundary" + junk + part),
                  "<a>1</>" + MALFORMED)
            << junk;
    }
}

TEST(MultipartReaderTest, rejectsPartWithInvalidHeader) {
    const std::string named = "Content-Disposition: form-data; name=\"a\"\r\n";
    for (const std::string& lines :
         {std::string(), std::string("Content-Type: text/plain\r\n"),
          std::string("Content-Disposition: form-data\r\n"),
          std::string("Content-Disposition: form-data; name\r\n"),
          std::string("Content-Disposition: form-data; name=\r\n"),
          std::string("Content-Disposition: form-data; name=\"\"\r\n"),
          std::string("Content-Disposition: form-data; filename=\"a\"\r\n"),
          std::string("Content-Disposition: form-data; name=a;\r\n name=b\r\n"),
          named + " folded\r\n", named + "\tfolded: value\r\n", named + "no colon\r\n",
          "no colon\r\n" + named}) {
        EXPECT_EQ(readHeader(lines), MALFORMED) << lines;
    }
}

TEST(MultipartReaderTest, rejectsPartWithoutEmptyLine) {
    EXPECT_EQ(readEachWay("--boundary\r\nContent-Disposition: form-data; name=a\r\n--boundary--"),
              MALFORMED);
}

TEST(MultipartReaderTest, acceptsNameUpToLimit) {
    const auto readName = [](std::size_t length) {
        return readParts(fieldPart(std::string(length, 'n'), "1"));
    };
    EXPECT_EQ(readName(NAME_LENGTH), "<" + std::string(NAME_LENGTH, 'n') + ">1</>");
    EXPECT_EQ(readName(NAME_LENGTH + 1), TOO_LARGE);
    const auto readFileName = [](std::size_t length) {
        return readPieces({filePart("f", std::string(length, 'n'), "1") + LAST_BOUNDARY});
    };
    EXPECT_EQ(readFileName(FILE_NAME_LENGTH), "<f|" + std::string(FILE_NAME_LENGTH, 'n') + ">1</>");
    EXPECT_EQ(readFileName(FILE_NAME_LENGTH + 1), TOO_LARGE);
}

// Regression test: a header of exactly the limit was refused if its end arrived in two pieces.
TEST(MultipartReaderTest, acceptsHeaderUpToLimitInAnyPieces) {
    EXPECT_EQ(readHeader(headerOfSize(PART_HEADER_LENGTH)), "<a>content</>");
    EXPECT_EQ(readHeader(headerOfSize(PART_HEADER_LENGTH + 1)), TOO_LARGE);
}

TEST(MultipartReaderTest, rejectsEndlessHeaderEarly) {
    Recorder recorder;
    MultipartReader reader(MULTIPART_TYPE, recorder);
    reader.feed("--boundary\r\n");
    std::size_t fed = 0;
    EXPECT_THROW(
        while (fed < 2 * PART_HEADER_LENGTH) {
            reader.feed("x");
            ++fed;
        },
        PException);
    EXPECT_LE(fed, PART_HEADER_LENGTH + 4);
    EXPECT_EQ(readPieces({"--boundary\r\n" + std::string(PART_HEADER_LENGTH + 4, 'x')}), TOO_LARGE);
}

TEST(MultipartReaderTest, acceptsPartsUpToLimit) {
    std::string parts;
    std::string found;
    for (std::size_t part = 0; part < FIELDS; ++part) {
        parts += fieldPart("a", "1");
        found += "<a>1</>";
    }
    EXPECT_EQ(readPieces({parts + LAST_BOUNDARY}), found);
    for (const std::size_t size : {std::size_t{1}, std::size_t{4}, std::size_t{100000}}) {
        const std::string tooMany = parts + fieldPart("a", "1") + LAST_BOUNDARY;
        EXPECT_EQ(readPieces(piecesOf(tooMany, size)), found + TOO_LARGE) << size;
    }
}

TEST(MultipartReaderTest, forwardsBytesExceptPossibleBoundary) {
    Recorder recorder;
    MultipartReader reader(MULTIPART_TYPE, recorder);
    reader.feed("--boundary\r\nContent-Disposition: form-data; name=a; filename=b\r\n\r\n");
    ASSERT_EQ(recorder.text, "<a|b>");
    const std::size_t delimiterLength = std::string_view("\r\n--boundary").size();
    for (std::size_t fed = 1; fed <= 3 * delimiterLength; ++fed) {
        reader.feed("x");
        EXPECT_EQ(recorder.text.size(), 5 + fed - std::min(fed, delimiterLength - 1));
    }
}

TEST(MultipartReaderTest, propagatesHandlerException) {
    class Refusing : public Host::MultipartHandler {
    public:
        void beginPart(const std::string& /*name*/, const std::string* /*fileName*/) override {
            throw Host::makePlatformException(Host::UPLOAD_NOT_STORED, "test");
        }
        void takeBytes(std::string_view /*bytes*/) override {}
        void endPart() override {}
    };
    Refusing refusing;
    MultipartReader reader(MULTIPART_TYPE, refusing);
    EXPECT_THROW(reader.feed(fieldPart("a", "1")), PException);
}

}  // namespace VeskLib::Test
