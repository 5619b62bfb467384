#include "tests/contract/TimeLimit.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

namespace VeskLib::Test {

namespace {

// Read by the signal handler, which may only call write() and _Exit().
char failureReport[512];

void giveUp(int /*signal*/) {
    static_cast<void>(!::write(STDOUT_FILENO, failureReport, std::strlen(failureReport)));
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

void TimeLimit::OnTestStart(const testing::TestInfo& test) {
    const std::string text = std::string("[  FAILED  ] ") + test.test_suite_name() + "." +
                             test.name() + "\nIt took longer than " + std::to_string(seconds) +
                             " s.\n";
    std::strncpy(failureReport, text.c_str(), sizeof failureReport - 1);
    std::signal(SIGALRM, giveUp);
    ::alarm(seconds);
}

void TimeLimit::OnTestEnd(const testing::TestInfo& /*test*/) {
    ::alarm(0);
}

}  // namespace VeskLib::Test
