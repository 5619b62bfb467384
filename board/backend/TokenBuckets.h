#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

namespace VeskLib::Board {

// Counts attempts by key, each key in a token bucket of its own: `capacity` attempts are free, and
// one more comes every `interval`. A bucket that nobody has taken from is full and takes no memory.
class TokenBuckets {
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    // Buckets that are remembered. Beyond that, the one that is nearest to full is forgotten.
    static constexpr std::size_t MOST_BUCKETS = 4096;

    TokenBuckets(int capacity, Clock::duration interval) : capacity(capacity), interval(interval) {}

    // When the bucket has a token, which may have been in the past.
    Time nextToken(const std::string& key) const;

    // When the bucket is full; `now` if it is already.
    Time fullFrom(const std::string& key, Time now) const;

    // Takes a token. A bucket without one is then in debt, of at most its capacity.
    void take(const std::string& key, Time now);

    // Undoes one take().
    void giveBack(const std::string& key);

    void fill(const std::string& key) { fullAt.erase(key); }

    std::size_t size() const { return fullAt.size(); }

private:
    void makeRoom(Time now);

    const int capacity;
    const Clock::duration interval;
    std::map<std::string, Time> fullAt;  // tells everything about a bucket
};

}  // namespace VeskLib::Board
