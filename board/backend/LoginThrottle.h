#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace VeskLib::Board {

// Slows down who guesses passwords. From one origin some attempts may fail freely; after those,
// each attempt must wait, twice as long each time. Who waits is told so and holds up nobody else.
// A login that succeeds, and a restart of the back-end, forget the failures. May be used by several
// threads at once.
class LoginThrottle {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr unsigned int FREE_ATTEMPTS = 5;
    static constexpr std::chrono::seconds FIRST_WAIT{1};
    static constexpr std::chrono::seconds LONGEST_WAIT{60};
    // Origins that are remembered; the one that was quiet for the longest time is forgotten.
    static constexpr std::size_t MOST_ORIGINS = 1024;

    // Whether an attempt from `origin` may be checked at the time `now`. It counts as failed until
    // succeeded() is called, so that many attempts at once are slowed down as well.
    bool mayTry(const std::string& origin, Time now);

    void succeeded(const std::string& origin);

private:
    struct Failures {
        unsigned int count = 0;
        Time last;
    };

    static std::chrono::seconds waitAfter(unsigned int failures);
    void forgetQuietest();

    std::mutex guard;
    std::map<std::string, Failures> origins;
};

}  // namespace VeskLib::Board
