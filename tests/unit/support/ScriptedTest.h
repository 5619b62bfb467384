#pragma once

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace VeskLib::Test {

using Calls = std::vector<std::string>;

// Returns the detail code of the PException that `operation` throws, or -1 if it throws none.
template <typename Operation>
int thrownDetail(Operation operation) {
    try {
        operation();
    } catch (const PException& exception) {
        return exception.getExceptionDetail();
    }
    return -1;
}

// Returns the name of the call with which `operation` ended the request, or "" if it did not.
template <typename Operation>
std::string endedBy(Operation operation) {
    try {
        operation();
    } catch (const Scripted::RequestEnded& end) {
        return end.endedBy;
    }
    return "";
}

// Fixture for tests on the scripted platform. Captures the program's output. Fails unless every
// platform object, including the test's own members, has been deleted exactly once at the end.
class ScriptedTest : public testing::Test {
public:
    ~ScriptedTest() override;

protected:
    ScriptedTest();

    // Returns everything printed so far.
    std::string output() const { return printed.str(); }

    // Return the recorded calls of the platform so far; the second overload returns those that
    // start with one of `beginnings`.
    static const Calls& calls() { return Scripted::recordedCalls(); }
    static Calls calls(const Calls& beginnings) { return Scripted::recordedCalls(beginnings); }

    Scripted::Script& script;

private:
    std::ostringstream printed;
    std::streambuf* standardOutput;
};

}  // namespace VeskLib::Test
