#include "board/backend/TokenBuckets.h"

#include <algorithm>

namespace VeskLib::Board {

TokenBuckets::Time TokenBuckets::nextToken(const std::string& key) const {
    const auto bucket = fullAt.find(key);
    return bucket == fullAt.end() ? Time::min() : bucket->second - (capacity - 1) * interval;
}

TokenBuckets::Time TokenBuckets::fullFrom(const std::string& key, Time now) const {
    const auto bucket = fullAt.find(key);
    return bucket == fullAt.end() ? now : std::max(bucket->second, now);
}

void TokenBuckets::take(const std::string& key, Time now) {
    if (fullAt.size() >= MOST_BUCKETS && !fullAt.contains(key)) {
        makeRoom(now);
    }
    fullAt[key] = std::min(fullFrom(key, now) + interval, now + 2 * capacity * interval);
}

void TokenBuckets::giveBack(const std::string& key) {
    const auto bucket = fullAt.find(key);
    if (bucket != fullAt.end()) {
        bucket->second -= interval;
    }
}

void TokenBuckets::makeRoom(Time now) {
    std::erase_if(fullAt, [now](const auto& bucket) { return bucket.second <= now; });
    if (fullAt.size() >= MOST_BUCKETS) {
        fullAt.erase(std::min_element(
            fullAt.begin(), fullAt.end(),
            [](const auto& one, const auto& other) { return one.second < other.second; }));
    }
}

}  // namespace VeskLib::Board
