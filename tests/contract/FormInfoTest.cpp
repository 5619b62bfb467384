#include <VeskLib/Gui/FormInfo.h>

#include "tests/contract/ProbeMain.h"
#include "tests/contract/multipart.h"
#include "tests/support/ChildProcess.h"

#include <VeskLib/PException.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <iostream>

namespace VeskLib::Test {

using Gui::FormInfo;

namespace {

ChildSetup getRequest(const std::string& query) {
    return {.environment = {{"REQUEST_METHOD", "GET"}, {"QUERY_STRING", query}}, .input = {}};
}

ChildSetup postRequest(const std::string& body, const std::string& query = "") {
    return {.environment = {{"REQUEST_METHOD", "POST"},
                            {"QUERY_STRING", query},
                            {"CONTENT_TYPE", "application/x-www-form-urlencoded"},
                            {"CONTENT_LENGTH", std::to_string(body.size())}},
            .input = body};
}

// Describes the field as the program finds it: its value in brackets, "absent" and the unchanged
// output, or "refused" if the call throws.
std::string ask(const FormInfo& formInfo, const std::string& name) {
    std::string value = "unchanged";
    try {
        const bool found = formInfo.getFormData(name, value);
        return found ? "[" + value + "]" : "absent, " + value;
    } catch (const PException&) {
        return "refused";
    }
}

// The same in a new process that handles `request`.
std::string answer(const ChildSetup& request, const std::string& name) {
    const ChildResult result = runInChild(
        [&name] {
            std::cout << ask(FormInfo(), name);
            return 0;
        },
        request);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

}  // namespace

TEST(FormInfoTest, firstMainCreatesTheOnlyInstance) {
    EXPECT_EQ(FormInfo::myInstance, nullptr);
    const ChildResult result = runInChild([] {
        const FormInfo* first = nullptr;
        {
            const ProbeMain main;
            first = FormInfo::myInstance;
        }
        const ProbeMain second;
        return first != nullptr && first == FormInfo::myInstance ? 0 : 1;
    });
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
}

TEST(FormInfoTest, readsQueryString) {
    EXPECT_EQ(answer(getRequest("functionID=105"), "functionID"), "[105]");
    EXPECT_EQ(answer(getRequest("a=1&functionID=0105&b=2"), "functionID"), "[0105]");
}

TEST(FormInfoTest, readsPostedForm) {
    EXPECT_EQ(answer(postRequest("hidden_status=BACKUP&radio_button=3"), "radio_button"), "[3]");
}

TEST(FormInfoTest, absentFieldLeavesValueUnchanged) {
    EXPECT_EQ(answer(getRequest("functionID=105"), "function"), "absent, unchanged");
    EXPECT_EQ(answer(getRequest("functionID=105"), "functionid"), "absent, unchanged");
    EXPECT_EQ(answer(getRequest(""), "functionID"), "absent, unchanged");
    EXPECT_EQ(answer({}, "functionID"), "absent, unchanged");
}

TEST(FormInfoTest, findsFieldWithEmptyValue) {
    EXPECT_EQ(answer(getRequest("functionID="), "functionID"), "[]");
    EXPECT_EQ(answer(postRequest("radio_button=&x=1"), "radio_button"), "[]");
}

TEST(FormInfoTest, decodesNamesAndValues) {
    EXPECT_EQ(answer(getRequest("pid0=a+b%20c%26%3D%2B%25"), "pid0"), "[a b c&=+%]");
    EXPECT_EQ(answer(postRequest("pid0=%E8%A3%BD%e5%93%81"), "pid0"), "[\xE8\xA3\xBD\xE5\x93\x81]");
    EXPECT_EQ(answer(getRequest("hidden%5fstatus=1"), "hidden_status"), "[1]");
}

TEST(FormInfoTest, formFieldTakesPrecedenceOverQueryField) {
    const ChildSetup request = postRequest("functionID=105", "functionID=106&other=query");
    EXPECT_EQ(answer(request, "functionID"), "[105]");
    EXPECT_EQ(answer(request, "other"), "[query]");
}

// The upload form relies on this when scripts are disabled: its button posts "hidden_status" before
// the hidden field of that name.
TEST(FormInfoTest, firstOfRepeatedFieldsTakesPrecedence) {
    EXPECT_EQ(answer(postRequest("hidden_status=1&x=2&hidden_status=0"), "hidden_status"), "[1]");
    EXPECT_EQ(answer(postRequest("hidden_status=&hidden_status=0"), "hidden_status"), "[]");
    EXPECT_EQ(answer(getRequest("functionID=105&functionID=106"), "functionID"), "[105]");
    EXPECT_EQ(
        answer(multipartRequest({{"hidden_status", "1"}, {"hidden_status", "0"}}, "a.dat", "x"),
               "hidden_status"),
        "[1]");
}

TEST(FormInfoTest, findsFieldsRepeatedly) {
    const ChildResult result = runInChild(
        [] {
            const FormInfo formInfo;
            for (const char* name : {"b", "a", "b", "c"}) {
                std::cout << ask(formInfo, name) << ' ';
            }
            return 0;
        },
        postRequest("a=1&b=2"));
    EXPECT_EQ(result.output, "[2] [1] [2] absent, unchanged ");
}

TEST(FormInfoTest, readsRequestOnFirstUse) {
    const ChildResult result = runInChild(
        [] {
            const FormInfo formInfo;
            char first = '?';
            static_cast<void>(!::read(STDIN_FILENO, &first, 1));
            std::cout << first;
            return 0;
        },
        postRequest("x=1"));
    EXPECT_EQ(result.output, "x");
}

TEST(FormInfoTest, findsNothingAfterTerminate) {
    const ChildResult result = runInChild(
        [] {
            FormInfo formInfo;
            std::cout << ask(formInfo, "a") << ' ';
            formInfo.terminate();
            std::cout << ask(formInfo, "a") << ' ' << ask(formInfo, "q") << ' ';
            formInfo.terminate();
            std::cout << ask(formInfo, "a");
            return 0;
        },
        postRequest("a=1", "q=2"));
    EXPECT_EQ(result.output, "[1] absent, unchanged absent, unchanged absent, unchanged");
}

TEST(FormInfoTest, findsNothingWhenTerminatedBeforeFirstUse) {
    const ChildResult result = runInChild(
        [] {
            FormInfo formInfo;
            formInfo.terminate();
            std::cout << ask(formInfo, "a") << ' ' << ask(formInfo, "q");
            return 0;
        },
        postRequest("a=1", "q=2"));
    EXPECT_EQ(result.output, "absent, unchanged absent, unchanged");
}

TEST(FormInfoTest, throwsForOversizedRequest) {
    const std::string megabyte(1024 * 1024, 'x');
    EXPECT_EQ(answer(postRequest("a=" + megabyte), "a"), "refused");
    EXPECT_EQ(answer(postRequest(megabyte + "=1"), "a"), "refused");
    EXPECT_EQ(answer(getRequest("a=" + megabyte.substr(0, 100000)), "a"), "refused");
}

TEST(FormInfoTest, throwsForTruncatedForm) {
    ChildSetup request = postRequest("a=1&b=2");
    request.environment["CONTENT_LENGTH"] = "100";
    EXPECT_EQ(answer(request, "a"), "refused");
}

}  // namespace VeskLib::Test
