#include "board/backend/StopSignal.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace VeskLib::Board {

namespace {

int openSignals() {
    sigset_t stopping;
    ::sigemptyset(&stopping);
    ::sigaddset(&stopping, SIGTERM);
    ::sigaddset(&stopping, SIGINT);
    ::pthread_sigmask(SIG_BLOCK, &stopping, nullptr);
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGXFSZ, SIG_IGN);
    const int signals = ::signalfd(-1, &stopping, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signals < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return signals;
}

}  // namespace

StopSignal::StopSignal() : signals(openSignals()) {
}

StopSignal::~StopSignal() {
    ::close(signals);
}

}  // namespace VeskLib::Board
