#include "board/backend/LoginThrottle.h"

#include <algorithm>

namespace VeskLib::Board {

bool LoginThrottle::mayTry(const std::string& origin, Time now) {
    const std::scoped_lock lock(guard);
    const auto known = origins.find(origin);
    if (known == origins.end() && origins.size() == MOST_ORIGINS) {
        forgetQuietest();
    }
    Failures& failures = origins[origin];
    if (now - failures.last < waitAfter(failures.count)) {
        return false;
    }
    ++failures.count;
    failures.last = now;
    return true;
}

void LoginThrottle::succeeded(const std::string& origin) {
    const std::scoped_lock lock(guard);
    origins.erase(origin);
}

std::chrono::seconds LoginThrottle::waitAfter(unsigned int failures) {
    if (failures < FREE_ATTEMPTS) {
        return std::chrono::seconds(0);
    }
    std::chrono::seconds wait = FIRST_WAIT;
    for (unsigned int i = FREE_ATTEMPTS; i < failures && wait < LONGEST_WAIT; ++i) {
        wait *= 2;
    }
    return std::min(wait, LONGEST_WAIT);
}

void LoginThrottle::forgetQuietest() {
    origins.erase(std::min_element(
        origins.begin(), origins.end(),
        [](const auto& one, const auto& other) { return one.second.last < other.second.last; }));
}

}  // namespace VeskLib::Board
