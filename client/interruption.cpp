#include "client/interruption.h"

#include "client/Failure.h"

#include <csignal>

namespace Efictl {

namespace {

volatile std::sig_atomic_t caught = 0;

void count(int /*signal*/) {
    caught = caught + 1;
}

}  // namespace

void catchInterruptions() {
    struct sigaction action = {};
    action.sa_handler = count;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction former = {};
        // A signal that nohup or the shell ignores stays ignored.
        if (sigaction(signal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

int interruptions() {
    return caught;
}

void endWhenInterrupted() {
    if (caught != 0) {
        throw Failure(ExitCode::FAILED, "Interrupted before completion.");
    }
}

}  // namespace Efictl
