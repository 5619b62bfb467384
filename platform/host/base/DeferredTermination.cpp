#include "platform/host/base/DeferredTermination.h"

namespace VeskLib::Host {

namespace {

// Neither call fails for a valid signal, nor changes errno then.
void blockTermination(sigset_t* before) {
    sigset_t termination;
    sigemptyset(&termination);
    sigaddset(&termination, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &termination, before);
}

}  // namespace

DeferredTermination::DeferredTermination() {
    blockTermination(&before);
}

DeferredTermination::~DeferredTermination() {
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void deferTerminationForGood() {
    blockTermination(nullptr);
}

}  // namespace VeskLib::Host
