#pragma once

#include <csignal>

namespace VeskLib::Host {

// Blocks SIGTERM in the calling thread while it exists; a signal that arrives meanwhile takes
// effect at the end. The web server sends SIGTERM to a program whose client has disconnected, and a
// client must not be able to end a program in the middle of a step. Preserves errno.
class DeferredTermination {
public:
    DeferredTermination();
    DeferredTermination(const DeferredTermination&) = delete;
    DeferredTermination& operator=(const DeferredTermination&) = delete;
    ~DeferredTermination();

private:
    sigset_t before;
};

// Blocks SIGTERM in the calling thread until the process ends.
void deferTerminationForGood();

}  // namespace VeskLib::Host
