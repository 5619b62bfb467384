#include "platform/host/base/idleWork.h"

#include <atomic>

namespace VeskLib::Host {

namespace {

// Atomic because several threads may each have a channel, which runs the planned work.
std::atomic<IdleWork> planned = nullptr;

}  // namespace

void planIdleWork(IdleWork work) {
    planned = work;
}

void doIdleWork() noexcept {
    const IdleWork work = planned.exchange(nullptr);
    if (work == nullptr) {
        return;
    }
    try {
        work();
    } catch (...) {
        // See the header.
    }
}

}  // namespace VeskLib::Host
