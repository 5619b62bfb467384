#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

namespace VeskLib::Board {

// Counts attempts in a token bucket per key: `capacity` attempts are free, and one more is added
// every `interval`. An unused bucket is full and takes no memory.
class TokenBuckets {
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    // The number of stored buckets. Beyond it, the one nearest to full is removed.
    static constexpr std::size_t MOST_BUCKETS = 4096;

    TokenBuckets(int capacity, Clock::duration interval) : capacity(capacity), interval(interval) {}

    // Returns the time at which the bucket has a token, which may be in the past.
    Time nextToken(const std::string& key) const;

    // Returns the time at which the bucket is full; `now` if it is full already.
    Time fullFrom(const std::string& key, Time now) const;

    // Takes a token. A bucket without one goes into debt, up to its capacity.
    void take(const std::string& key, Time now);

    // Undoes one take().
    void giveBack(const std::string& key);

    void fill(const std::string& key) { fullAt.erase(key); }

    std::size_t size() const { return fullAt.size(); }

private:
    void makeRoom(Time now);

    const int capacity;
    const Clock::duration interval;
    std::map<std::string, Time> fullAt;  // the whole state of a bucket
};

}  // namespace VeskLib::Board
