#include "platform/host/audit/Turn.h"

#include "platform/host/base/platformException.h"
#include "platform/host/channel/FrameStream.h"

#include <chrono>
#include <condition_variable>
#include <iterator>
#include <list>
#include <mutex>

namespace VeskLib::Host {

namespace {

struct Queue {
    std::mutex guard;
    std::condition_variable moved;
    std::list<const Turn*> turns;  // the first one has the turn
};

Queue& queue() {
    static Queue queue;
    return queue;
}

}  // namespace

Turn::Turn(const Deadline& deadline) {
    const std::chrono::milliseconds longest(deadline.remainingMilliseconds());
    Queue& all = queue();
    std::unique_lock lock(all.guard);
    all.turns.push_back(this);
    const auto mine = std::prev(all.turns.end());
    if (!all.moved.wait_for(lock, longest, [&] { return mine == all.turns.begin(); })) {
        all.turns.erase(mine);
        throw makePlatformException(AUDIT_NOT_WRITTEN, "The audit log is in use");
    }
}

Turn::~Turn() {
    Queue& all = queue();
    const std::scoped_lock lock(all.guard);
    all.turns.pop_front();
    all.moved.notify_all();
}

std::size_t Turn::waiting() {
    const std::scoped_lock lock(queue().guard);
    return queue().turns.empty() ? 0 : queue().turns.size() - 1;
}

}  // namespace VeskLib::Host
