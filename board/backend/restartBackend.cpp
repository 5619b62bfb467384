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
    // The signals that end the back-end are to end it while it waits as well.
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    // Everything the process has open is closed by this, because all of it is close-on-exec.
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
