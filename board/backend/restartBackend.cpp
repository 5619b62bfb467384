#include "board/backend/restartBackend.h"

#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace VeskLib::Board {

namespace {

const char* const WAIT_VARIABLE = "BACKEND_RETURNS_AFTER_MS";

char** startArguments = nullptr;

}  // namespace

void rememberArguments(char** arguments) {
    startArguments = arguments;
}

void restartBackend(int milliseconds) {
    ::setenv(WAIT_VARIABLE, std::to_string(milliseconds).c_str(), 1);
    // Unblocked, so that the signals that end the back-end also end it while it waits.
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    // Also closes all descriptors, because they are close-on-exec.
    ::execv("/proc/self/exe", startArguments);
    ::_exit(1);
}

void waitForReturn() {
    const char* const milliseconds = std::getenv(WAIT_VARIABLE);
    if (milliseconds != nullptr) {
        ::poll(nullptr, 0, std::atoi(milliseconds));
        ::unsetenv(WAIT_VARIABLE);
    }
}

}  // namespace VeskLib::Board
