#include <VeskLib/Gui/FormInfo.h>

#include "platform/host/base/stagedFile.h"
#include "platform/host/web/FormLimits.h"
#include "platform/host/web/formPolicy.h"
#include "tests/host/refusal.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/interruptOften.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <iostream>

namespace VeskLib::Test {

using Gui::FormInfo;
using Host::FormLimits::BODY_LENGTH;
using Host::FormLimits::QUERY_LENGTH;

namespace {

const std::size_t SMALL_BODY = 4 * 1024;

// Returns a field as a new process reads it: "[value]", "absent" or a refusal.
std::string ask(const ChildSetup& request, const std::string& name) {
    const ChildResult result = runInChild(
        [&name] {
            std::string value;
            try {
                std::cout << (FormInfo().getFormData(name, value) ? "[" + value + "]" : "absent");
            } catch (const PException& exception) {
                std::cout << refused(exception.getExceptionDetail());
            }
            return 0;
        },
        request);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

// Returns a posted form. If `contentLength` is empty, the length is not announced.
ChildSetup post(const std::string& body, const std::string& contentLength,
                InputKind kind = InputKind::PIPE) {
    Environment environment = {{"REQUEST_METHOD", "POST"},
                               {"CONTENT_TYPE", "application/x-www-form-urlencoded"}};
    if (!contentLength.empty()) {
        environment["CONTENT_LENGTH"] = contentLength;
    }
    return {.environment = environment, .input = body, .inputKind = kind};
}

std::string askPosted(const std::string& body, const std::string& contentLength,
                      InputKind kind = InputKind::PIPE) {
    return ask(post(body, contentLength, kind), "a");
}

std::string askTyped(const std::string& type) {
    ChildSetup request = post("a=1", "3");
    request.environment["CONTENT_TYPE"] = type;
    return ask(request, "a");
}

std::string askQuery(const std::string& query) {
    return ask({.environment = {{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}, .input = {}},
               "a");
}

// Same as askPosted(), for a program that accepts SMALL_BODY bytes.
std::string askSmall(const std::string& body, const std::string& contentLength) {
    Host::formPolicy().bodyLength = SMALL_BODY;
    const std::string answer = askPosted(body, contentLength);
    Host::formPolicy() = {};
    return answer;
}

// Returns a form of exactly `size` bytes that begins with "a=1".
std::string formOf(std::size_t size) {
    std::string form = "a=1";
    while (form.size() < size) {
        form += "&f=";
        form.append(std::min<std::size_t>(1000, size - std::min(size, form.size())), 'x');
    }
    return form.substr(0, size);
}

}  // namespace

TEST(FormInfoHostTest, notesFileShownByPostedPage) {
    const auto notedOf = [](const std::string& body, const std::string& query) {
        ChildSetup request = post(body, std::to_string(body.size()));
        request.environment["QUERY_STRING"] = query;
        return runInChild(
                   [] {
                       std::string value;
                       FormInfo().getFormData("a", value);
                       std::cout << Host::postedFile();
                       return 0;
                   },
                   request)
            .output;
    };
    EXPECT_EQ(notedOf("a=1&staged_file=0b", ""), "0b");
    EXPECT_EQ(notedOf("a=1", ""), "");
    EXPECT_EQ(notedOf("a=1", "staged_file=0b"), "");
    EXPECT_EQ(notedOf("staged_file=" + std::string(1000, 'c'), ""), std::string(65, 'c'));
}

TEST(FormInfoHostTest, readsBodyFromPipeOrFile) {
    for (const InputKind kind : {InputKind::PIPE, InputKind::FILE}) {
        EXPECT_EQ(askPosted("a=1&b=2", "7", kind), "[1]");
        EXPECT_EQ(askPosted(formOf(BODY_LENGTH), std::to_string(BODY_LENGTH), kind), "[1]");
        EXPECT_EQ(askPosted("", "0", kind), "absent");
    }
}

TEST(FormInfoHostTest, readsBodyToEndWithoutLength) {
    for (const InputKind kind : {InputKind::PIPE, InputKind::FILE}) {
        EXPECT_EQ(askPosted("b=2&a=last", "", kind), "[last]");
        EXPECT_EQ(askPosted("", "", kind), "absent");
    }
}

TEST(FormInfoHostTest, rejectsTruncatedBody) {
    for (const InputKind kind : {InputKind::PIPE, InputKind::FILE}) {
        EXPECT_EQ(askPosted("a=1", "4", kind), MALFORMED);
        EXPECT_EQ(askPosted("", "1", kind), MALFORMED);
        EXPECT_EQ(askPosted(formOf(10000), "10001", kind), MALFORMED);
    }
}

TEST(FormInfoHostTest, ignoresBytesAfterAnnouncedLength) {
    EXPECT_EQ(askPosted("a=1234", "3"), "[1]");
    EXPECT_EQ(askPosted("a=1&b=2", "0"), "absent");
}

TEST(FormInfoHostTest, rejectsInvalidLength) {
    for (const char* length :
         {"abc", "-1", "+3", "3x", " 3", "3 ", "0x3", "3.0", "1e1", "99999999999999999999999"}) {
        EXPECT_EQ(askPosted("a=1", length), MALFORMED) << length;
    }
}

TEST(FormInfoHostTest, rejectsLengthAboveLimit) {
    EXPECT_EQ(askPosted("a=1", std::to_string(BODY_LENGTH + 1)), TOO_LARGE);
    EXPECT_EQ(askPosted("a=1", "9999999999"), TOO_LARGE);
    // The largest number must not be taken for "no length".
    EXPECT_EQ(askPosted("a=1", "18446744073709551615"), TOO_LARGE);
}

TEST(FormInfoHostTest, appliesLowerLimitOfProgram) {
    EXPECT_EQ(askSmall(formOf(SMALL_BODY), std::to_string(SMALL_BODY)), "[1]");
    EXPECT_EQ(askSmall(formOf(SMALL_BODY), ""), "[1]");
    EXPECT_EQ(askSmall(formOf(SMALL_BODY + 1), std::to_string(SMALL_BODY + 1)), TOO_LARGE);
    EXPECT_EQ(askSmall(formOf(SMALL_BODY + 1), ""), TOO_LARGE);
    // Rejected because of the announced length, without waiting for the body.
    EXPECT_EQ(askSmall("", std::to_string(SMALL_BODY + 1)), TOO_LARGE);
}

TEST(FormInfoHostTest, acceptsUnannouncedBodyUpToLimit) {
    EXPECT_EQ(askPosted(formOf(BODY_LENGTH), ""), "[1]");
    EXPECT_EQ(askPosted(formOf(BODY_LENGTH + 1), ""), TOO_LARGE);
}

TEST(FormInfoHostTest, rejectsFormWithoutStandardInput) {
    EXPECT_EQ(askPosted("", "3", InputKind::CLOSED), MALFORMED);
    EXPECT_EQ(askPosted("", "", InputKind::CLOSED), MALFORMED);
}

TEST(FormInfoHostTest, ignoresBodyOfGetAndHead) {
    ChildSetup request = post("a=1", "3");
    for (const char* method : {"GET", "HEAD"}) {
        request.environment["REQUEST_METHOD"] = method;
        EXPECT_EQ(ask(request, "a"), "absent");
    }
    request.environment["REQUEST_METHOD"] = "GET";
    request.inputKind = InputKind::CLOSED;
    EXPECT_EQ(ask(request, "a"), "absent");
}

TEST(FormInfoHostTest, ignoresOtherContentTypes) {
    EXPECT_EQ(askTyped("application/x-www-form-urlencoded; charset=UTF-8"), "[1]");
    EXPECT_EQ(askTyped("application/x-www-form-urlencoded;charset=UTF-8"), "[1]");
    EXPECT_EQ(askTyped(""), "[1]");
    EXPECT_EQ(askTyped("Application/X-WWW-Form-URLencoded"), "[1]");
    EXPECT_EQ(askTyped("application/x-www-form-urlencoded ; charset=UTF-8"), "[1]");
    EXPECT_EQ(askTyped(" application/x-www-form-urlencoded\t"), "[1]");
    for (const char* type : {"text/plain", "application/json", "application/x-www-form-urlencodedx",
                             "application/x-www-form", "application/x-www-form urlencoded",
                             "x; application/x-www-form-urlencoded", ";"}) {
        EXPECT_EQ(askTyped(type), "absent") << type;
    }
}

TEST(FormInfoHostTest, acceptsQueryUpToLimit) {
    EXPECT_EQ(askQuery(formOf(QUERY_LENGTH)), "[1]");
    EXPECT_EQ(askQuery(formOf(QUERY_LENGTH + 1)), TOO_LARGE);
}

TEST(FormInfoHostTest, continuesReadingAfterSignal) {
    const auto readSlowBody = [] {
        interruptOften();
        int ends[2] = {};
        static_cast<void>(!::pipe(ends));
        ::dup2(ends[0], STDIN_FILENO);
        if (::fork() == 0) {
            ::usleep(50000);
            static_cast<void>(!::write(ends[1], "a=1", 3));
            ::_exit(0);
        }
        std::string value;
        FormInfo().getFormData("a", value);
        std::cout << value;
        return 0;
    };
    const ChildResult result = runInChild(readSlowBody, post("", "3", InputKind::CLOSED));
    EXPECT_EQ(result.output, "1") << result.errors;
}

}  // namespace VeskLib::Test
