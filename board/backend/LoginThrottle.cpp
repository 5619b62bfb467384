#include "board/backend/LoginThrottle.h"

namespace VeskLib::Board {

using Clock = LoginQueue::Clock;

LoginThrottle::Pass::Pass(LoginThrottle& throttle, const LoginAttempt& attempt)
    : throttle(throttle), entry(throttle.arrive(attempt)), admitted(throttle.wait(entry)) {
}

LoginThrottle::Pass::~Pass() {
    throttle.leave(entry, success);
}

void LoginThrottle::end() {
    const std::scoped_lock lock(guard);
    queue.end();
    changed.notify_all();
}

LoginQueue::Entry& LoginThrottle::arrive(const LoginAttempt& attempt) {
    const std::scoped_lock lock(guard);
    LoginQueue::Entry& entry = queue.arrive(attempt, Clock::now());
    changed.notify_all();  // another may have been refused to make room
    return entry;
}

// True when the entry is admitted.
bool LoginThrottle::wait(const LoginQueue::Entry& entry) {
    std::unique_lock<std::mutex> lock(guard);
    while (entry.state() == LoginQueue::State::WAITING) {
        const LoginQueue::Time next = queue.nextDecision();
        if (changed.wait_until(lock, next) == std::cv_status::timeout &&
            queue.advance(Clock::now())) {
            changed.notify_all();
        }
    }
    return entry.state() == LoginQueue::State::ADMITTED;
}

void LoginThrottle::leave(LoginQueue::Entry& entry, bool succeeded) {
    const std::scoped_lock lock(guard);
    queue.leave(entry, succeeded, Clock::now());
    changed.notify_all();
}

}  // namespace VeskLib::Board
