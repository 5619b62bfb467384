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

// The detail code of the PException that `operation` throws; -1 when it throws none.
template <typename Operation>
int thrownDetail(Operation operation) {
    try {
        operation();
    } catch (const PException& exception) {
        return exception.getExceptionDetail();
    }
    return -1;
}

// What ended the request's process during `operation`; empty when nothing did.
template <typename Operation>
std::string endedBy(Operation operation) {
    try {
        operation();
    } catch (const Scripted::RequestEnded& end) {
        return end.endedBy;
    }
    return "";
}

// A test on the scripted platform. What the program prints is kept. When the test is over, its
// own members included, every platform object must have been deleted exactly once.
class ScriptedTest : public testing::Test {
public:
    ~ScriptedTest() override;

protected:
    ScriptedTest();

    // Everything printed so far.
    std::string output() const { return printed.str(); }

    // What was asked of the platform so far; the second form gives the lines that begin with one
    // of `beginnings`.
    static const Calls& calls() { return Scripted::recordedCalls(); }
    static Calls calls(const Calls& beginnings) { return Scripted::recordedCalls(beginnings); }

    Scripted::Script& script;

private:
    std::ostringstream printed;
    std::streambuf* standardOutput;
};

}  // namespace VeskLib::Test
