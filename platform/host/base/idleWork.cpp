#include "platform/host/base/idleWork.h"

#include <utility>

namespace VeskLib::Host {

namespace {

IdleWork planned = nullptr;

}  // namespace

void planIdleWork(IdleWork work) {
    planned = work;
}

void doIdleWork() noexcept {
    const IdleWork work = std::exchange(planned, nullptr);
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
