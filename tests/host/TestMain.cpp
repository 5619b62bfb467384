#include "tests/host/TestMain.h"

#include <utility>

namespace VeskLib::Test {

namespace {

Environment makeRequest(const std::string& method, const std::string& cookieValue) {
    Environment environment = {{"REQUEST_METHOD", method}, {"HTTP_HOST", "localhost"}};
    if (!cookieValue.empty()) {
        environment["HTTP_COOKIE"] = "session=" + cookieValue;
    }
    return environment;
}

}  // namespace

TestMain::TestMain(Work work) : AbstractConfigMain("Test screen"), work(std::move(work)) {
}

int TestMain::individualProc() {
    return work(*this);
}

ChildResult runRequest(const TestMain::Work& work, const Environment& environment) {
    return runInChild([&work] { return TestMain(work).exec(); },
                      {.environment = environment, .input = {}});
}

Environment getRequest(const std::string& cookieValue) {
    return makeRequest("GET", cookieValue);
}

Environment postRequest(const std::string& cookieValue) {
    return makeRequest("POST", cookieValue);
}

}  // namespace VeskLib::Test
