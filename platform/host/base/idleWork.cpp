#include "platform/host/base/idleWork.h"

#include <atomic>

namespace VeskLib::Host {

namespace {

// Atomic because each thread may have a channel of its own, which looks for work.
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
