#include "board/backend/LoginThrottle.h"

#include "platform/host/base/sha256.h"

#include <sys/auxv.h>

namespace VeskLib::Board {

using Clock = LoginQueue::Clock;

namespace {

const std::size_t SECRET_BYTES = 16;
const std::size_t GUESS_DIGITS = 4;

}  // namespace

LoginThrottle::Pass::Pass(LoginThrottle& throttle, const LoginAttempt& attempt)
    : throttle(throttle), entry(throttle.arrive(attempt)), admitted(throttle.wait(entry)) {
}

LoginThrottle::Pass::~Pass() {
    throttle.leave(entry, success);
}

std::string LoginThrottle::guessOf(const std::string& password) {
    // Random bytes that the kernel gave this process, so that the digits mean nothing in another.
    // Very many passwords have the same few digits, which only affect the order of attempts.
    const auto* const secret = reinterpret_cast<const char*>(::getauxval(AT_RANDOM));
    return Host::sha256Hex(std::string(secret, SECRET_BYTES) + password).substr(0, GUESS_DIGITS);
}

void LoginThrottle::end() {
    const std::scoped_lock lock(guard);
    queue.end();
    changed.notify_all();
}

LoginQueue::Entry& LoginThrottle::arrive(const LoginAttempt& attempt) {
    const std::scoped_lock lock(guard);
    const std::size_t before = queue.waiting();
    LoginQueue::Entry& entry = queue.arrive(attempt, Clock::now());
    const bool waits = entry.state() == LoginQueue::State::WAITING;
    if (queue.waiting() != before + (waits ? 1 : 0)) {
        changed.notify_all();  // something else was decided as well
    }
    return entry;
}

// Waits for a decision. Returns true if the entry is admitted.
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
    const bool admitted = entry.state() == LoginQueue::State::ADMITTED;
    queue.leave(entry, succeeded, Clock::now());
    if (admitted) {
        changed.notify_all();  // the time of the next decision has changed
    }
}

}  // namespace VeskLib::Board
