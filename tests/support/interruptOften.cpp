#include "tests/support/interruptOften.h"

#include <sys/time.h>

#include <csignal>

namespace VeskLib::Test {

void interruptOften() {
    struct sigaction action = {};  // without SA_RESTART
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, nullptr);
    const timeval interval = {.tv_sec = 0, .tv_usec = 10000};
    const itimerval often = {.it_interval = interval, .it_value = interval};
    ::setitimer(ITIMER_REAL, &often, nullptr);
}

}  // namespace VeskLib::Test
