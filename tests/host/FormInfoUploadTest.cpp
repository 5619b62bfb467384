#include "platform/host/web/FormLimits.h"
#include "platform/host/web/formPolicy.h"
#include "tests/host/multipartBody.h"
#include "tests/host/refusal.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"
#include "tests/support/hostileTexts.h"

#include <VeskLib/Gui/FormInfo.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>

namespace VeskLib::Test {

using Gui::FormInfo;
using Host::FormLimits::BODY_LENGTH;
using Host::FormLimits::FILE_LENGTH;
using Host::FormLimits::VALUE_LENGTH;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string NOTHING = "no a, no b, file [] of 0 bytes: []";

std::string fieldOf(const FormInfo& form, const std::string& name) {
    std::string value;
    return form.getFormData(name, value) ? name + " [" + value + "]" : "no " + name;
}

// Returns the contents as a program of the board reads them: the fields "a" and "b", and the file.
std::string contentOf(const FormInfo& form) {
    try {
        std::string found = fieldOf(form, "a") + ", " + fieldOf(form, "b");
        const std::string path = form.getUploadFilePath();
        return found + ", file [" + form.getUploadFileName() + "] of " +
               std::to_string(form.getUploadFileSize()) + " bytes: [" +
               (path.empty() ? "" : readText(path)) + "]";
    } catch (const PException& exception) {
        return refused(exception.getExceptionDetail());
    }
}

class FormInfoUploadTest : public BoardTest {
protected:
    static std::vector<std::string> names() { return namesIn(boardFile("/var/tmp")); }

    // Runs `work` in a child process and returns the lines that it prints.
    static std::vector<std::string> run(const std::function<void()>& work,
                                        const ChildSetup& request) {
        const ChildResult result = runInChild(
            [&work] {
                work();
                return 0;
            },
            request);
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
        return linesOf(result.output);
    }

    // Returns the contents of a request. Expects that the destroyed form leaves no file.
    static std::string find(const ChildSetup& request) {
        const ChildResult result = runInChild(
            [] {
                std::cout << contentOf(FormInfo());
                return 0;
            },
            request);
        EXPECT_EQ(result.exitStatus, 0) << result.errors;
        EXPECT_THAT(names(), IsEmpty());
        return result.output;
    }

    // Same as find(), for a program with this policy.
    static std::string findBy(const Host::FormPolicy& policy, const ChildSetup& request) {
        Host::formPolicy() = policy;
        const std::string found = find(request);
        Host::formPolicy() = {};
        return found;
    }

    // Reads a request that must be refused and returns the refusal. Expects that nothing of it is
    // kept.
    static std::string findRefused(const ChildSetup& request) {
        const std::vector<std::string> lines = run(
            [] {
                const FormInfo form;
                std::cout << contentOf(form) << '\n' << contentOf(form) << '\n';
                std::cout << names().size() << std::endl;
            },
            request);
        EXPECT_EQ(lines.size(), 3U);
        EXPECT_EQ(lines.at(1), NOTHING);
        EXPECT_EQ(lines.at(2), "0");
        EXPECT_THAT(names(), IsEmpty());
        return lines.at(0);
    }
};

// The numbers that receive_upload prints.
struct Received {
    long size = 0;
    long stored = 0;
    long peakKilobytes = 0;
};

Received receiveUpload(std::size_t size) {
    ChildSetup request = postParts(filePart("f", "n", std::string(size, 'x')));
    request.inputKind = InputKind::FILE;
    const ChildResult result = runProgram({RECEIVE_UPLOAD}, request);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    Received received;
    std::istringstream(result.output) >> received.size >> received.stored >> received.peakKilobytes;
    EXPECT_GT(received.peakKilobytes, 0) << result.output;
    return received;
}

}  // namespace

TEST_F(FormInfoUploadTest, findsFieldsAndFile) {
    const std::string parts =
        fieldPart("a", "1") + filePart("filename", "saved.dat", "content") + fieldPart("b", "x y");
    for (const InputKind kind : {InputKind::PIPE, InputKind::FILE}) {
        ChildSetup request = postParts(parts);
        request.inputKind = kind;
        EXPECT_EQ(find(request), "a [1], b [x y], file [saved.dat] of 7 bytes: [content]");
    }
}

TEST_F(FormInfoUploadTest, countsFileWithoutStoring) {
    const Host::FormPolicy counted = {.file = Host::FormPolicy::File::COUNTED};
    const std::string parts = fieldPart("a", "1") + filePart("f", "saved.dat", "content");
    EXPECT_EQ(findBy(counted, postParts(parts)), "a [1], no b, file [saved.dat] of 7 bytes: []");
    EXPECT_EQ(findBy(counted, postParts(filePart("f", "n", std::string(2 * BODY_LENGTH, 'x')))),
              "no a, no b, file [n] of " + std::to_string(2 * BODY_LENGTH) + " bytes: []");
}

TEST_F(FormInfoUploadTest, limitsRefusedFileLikeField) {
    const std::size_t length = 3000;
    const Host::FormPolicy refused = {.bodyLength = 2 * length,
                                      .file = Host::FormPolicy::File::REFUSED};
    const auto sized = [](std::size_t size) { return filePart("f", "n", std::string(size, 'x')); };
    EXPECT_EQ(findBy(refused, postParts(sized(length))), "no a, no b, file [n] of 0 bytes: []");
    EXPECT_EQ(findBy(refused, postParts(fieldPart("a", "1") + sized(VALUE_LENGTH + 1))), TOO_LARGE);
    const std::string field = fieldPart("b", std::string(length, 'x'));
    EXPECT_EQ(findBy(refused, postParts(field + fieldPart("a", "1") + sized(length))), TOO_LARGE);
}

TEST_F(FormInfoUploadTest, keepsValuesVerbatim) {
    EXPECT_EQ(find(postParts(fieldPart("a", "1+1%41&b=2") + fieldPart("b", ""))),
              "a [1+1%41&b=2], b [], file [] of 0 bytes: []");
    for (const std::string& text : hostileTexts()) {
        EXPECT_EQ(find(postParts(fieldPart("a", text))),
                  "a [" + text + "], no b, file [] of 0 bytes: []");
    }
}

TEST_F(FormInfoUploadTest, prefersFirstFieldAndFormOverQuery) {
    ChildSetup request = postParts(fieldPart("a", "1") + fieldPart("a", "2"));
    request.environment["QUERY_STRING"] = "a=3&b=4";
    EXPECT_EQ(find(request), "a [1], b [4], file [] of 0 bytes: []");
}

TEST_F(FormInfoUploadTest, doesNotReturnFileAsField) {
    EXPECT_EQ(find(postParts(filePart("a", "n", "1"))), "no a, no b, file [n] of 1 bytes: [1]");
}

TEST_F(FormInfoUploadTest, acceptsEmptyOrUnselectedFile) {
    EXPECT_EQ(find(postParts(filePart("f", "n", ""))), "no a, no b, file [n] of 0 bytes: []");
    EXPECT_EQ(find(postParts(filePart("f", "", ""))), NOTHING);
}

TEST_F(FormInfoUploadTest, findsFieldsAfterOversizedFile) {
    const std::string file(FILE_LENGTH, 'x');
    EXPECT_EQ(find(postParts(filePart("f", "n", file) + fieldPart("a", "1"))),
              "a [1], no b, file [n] of " + std::to_string(FILE_LENGTH) + " bytes: [" + file + "]");
    EXPECT_EQ(find(postParts(filePart("f", "n", file + "y") + fieldPart("a", "1"))),
              "a [1], no b, file [n] of " + std::to_string(FILE_LENGTH + 1) + " bytes: []");
}

TEST_F(FormInfoUploadTest, rejectsSecondFile) {
    for (const std::string& second : {filePart("g", "m", "two"), filePart("f", "n", "one"),
                                      filePart("g", "", ""), filePart("g", "m", "")}) {
        EXPECT_EQ(findRefused(postParts(fieldPart("a", "1") + filePart("f", "n", "one") + second)),
                  MALFORMED);
    }
    EXPECT_EQ(findRefused(postParts(filePart("f", "", "") + filePart("g", "m", "two"))), MALFORMED);
}

TEST_F(FormInfoUploadTest, keepsNothingOfTruncatedForm) {
    const std::string parts =
        fieldPart("a", "1") + filePart("f", "n", "content") + fieldPart("b", "2");
    const std::string whole = parts + LAST_BOUNDARY;
    for (std::size_t length = 0; length < parts.size(); length += 17) {
        ChildSetup request = postBody(whole.substr(0, length));
        EXPECT_EQ(findRefused(request), MALFORMED) << length;
        request.environment["CONTENT_LENGTH"] = std::to_string(whole.size());
        EXPECT_EQ(findRefused(request), MALFORMED) << length;
        request.environment.erase("CONTENT_LENGTH");
        EXPECT_EQ(findRefused(request), MALFORMED) << length;
    }
}

TEST_F(FormInfoUploadTest, rejectsFormShorterThanAnnounced) {
    ChildSetup request = postParts(fieldPart("a", "1"));
    for (const char* length : {"1000", "18446744073709551615"}) {
        request.environment["CONTENT_LENGTH"] = length;
        EXPECT_EQ(findRefused(request), MALFORMED) << length;
    }
}

TEST_F(FormInfoUploadTest, readsFormToEndWithoutLength) {
    ChildSetup request = postParts(fieldPart("a", "1") + filePart("f", "n", "content"));
    request.environment.erase("CONTENT_LENGTH");
    EXPECT_EQ(find(request), "a [1], no b, file [n] of 7 bytes: [content]");
}

TEST_F(FormInfoUploadTest, rejectsFormWithMalformedPart) {
    const std::string parts = fieldPart("a", "1") + filePart("f", "n", "content");
    EXPECT_EQ(findRefused(postParts(parts + partOf("no colon\r\n", ""))), MALFORMED);
    EXPECT_EQ(findRefused(postBody(parts + "--boundaryjunk" + LAST_BOUNDARY)), MALFORMED);
    ChildSetup request = postParts(parts);
    request.environment["CONTENT_TYPE"] = "multipart/form-data";
    EXPECT_EQ(findRefused(request), MALFORMED);
}

TEST_F(FormInfoUploadTest, acceptsValuesUpToLimits) {
    const std::string value(VALUE_LENGTH, 'v');
    EXPECT_EQ(find(postParts(fieldPart("a", value))),
              "a [" + value + "], no b, file [] of 0 bytes: []");
    EXPECT_EQ(findRefused(postParts(fieldPart("a", value + "v"))), TOO_LARGE);
    std::string parts = fieldPart("a", "") + filePart("f", "n", std::string(100000, 'x'));
    for (std::size_t length = 0; length < BODY_LENGTH; length += VALUE_LENGTH) {
        parts += fieldPart("c", value);
    }
    EXPECT_THAT(find(postParts(parts)), testing::StartsWith("a [], no b, file [n] of 100000"));
    EXPECT_EQ(findRefused(postParts(parts + fieldPart("d", "v"))), TOO_LARGE);
}

TEST_F(FormInfoUploadTest, ignoresOtherContentTypes) {
    ChildSetup request = postParts(fieldPart("a", "1"));
    for (const char* type : {"multipart/mixed; boundary=boundary", "multipart/form-datax",
                             "multipart/form-dat; boundary=boundary", "multipart/"}) {
        request.environment["CONTENT_TYPE"] = type;
        EXPECT_EQ(find(request), NOTHING) << type;
    }
    request.environment["CONTENT_TYPE"] = "multipart/form-data;boundary=boundary";
    EXPECT_EQ(find(request), "a [1], no b, file [] of 0 bytes: []");
    request.environment["REQUEST_METHOD"] = "GET";
    EXPECT_EQ(find(request), NOTHING);
}

TEST_F(FormInfoUploadTest, terminateRemovesUnmovedFile) {
    const auto work = [] {
        FormInfo form;
        std::cout << contentOf(form) << '\n' << names().size() << '\n';
        form.terminate();
        std::cout << contentOf(form) << '\n' << names().size() << std::endl;
    };
    EXPECT_THAT(run(work, postParts(filePart("f", "n", "content"))),
                ElementsAre("no a, no b, file [n] of 7 bytes: [content]", "1", NOTHING, "0"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(FormInfoUploadTest, terminateLeavesMovedFile) {
    const std::string kept = boardFile("/var/tmp/kept");
    const auto work = [&kept] {
        FormInfo form;
        std::cout << std::rename(form.getUploadFilePath().c_str(), kept.c_str()) << '\n';
        form.terminate();
        std::cout << contentOf(form) << std::endl;
    };
    EXPECT_THAT(run(work, postParts(filePart("f", "n", "content"))), ElementsAre("0", NOTHING));
    EXPECT_THAT(names(), ElementsAre("kept"));
    EXPECT_EQ(readText(kept), "content");
}

TEST_F(FormInfoUploadTest, leavesNoUnrequestedFileWithoutTerminate) {
    const auto work = [] {
        // As in the program, the object is never deleted.
        FormInfo::myInstance = std::make_unique<FormInfo>().release();
        std::cout << fieldOf(*FormInfo::myInstance, "a") << std::endl;
    };
    EXPECT_THAT(run(work, postParts(fieldPart("a", "1") + filePart("f", "n", "content"))),
                ElementsAre("a [1]"));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(FormInfoUploadTest, readsFieldsIfFileCannotBeStored) {
    std::filesystem::remove_all(boardFile("/var/tmp"));
    const auto work = [] {
        const FormInfo form;
        std::cout << fieldOf(form, "a") << '\n' << form.getUploadFileSize() << '\n';
        std::cout << contentOf(form) << std::endl;
    };
    EXPECT_THAT(run(work, postParts(filePart("f", "n", "content") + fieldPart("a", "1"))),
                ElementsAre("a [1]", "7", refused(Host::UPLOAD_NOT_STORED)));
}

TEST_F(FormInfoUploadTest, needsConstantMemory) {
    const long small = 1024;
    const long large = 8 * 1024 * 1024;
    const Received least = receiveUpload(small);
    const Received most = receiveUpload(large);
    EXPECT_EQ(least.size, small);
    EXPECT_EQ(least.stored, small);
    EXPECT_EQ(most.size, large);
    EXPECT_EQ(most.stored, -1);
    EXPECT_LE(most.peakKilobytes - least.peakKilobytes, 1024);
}

}  // namespace VeskLib::Test
