#pragma once

#include <algorithm>
#include <chrono>

namespace Efictl {

// The deadline of a command. Reserves some of the time for the cleanup, which also follows a
// failure: discarding an uploaded file, and logging out.
class Schedule {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    explicit Schedule(Milliseconds total)
        : reserve(std::min<Milliseconds>(LONGEST_CLEANUP, total / 4)), end(Clock::now() + total) {}

    // Begins the cleanup. It gets at most the reserved time, even if more is left.
    void beginCleanup() {
        if (!cleaning) {
            cleaning = true;
            end = std::min(end, Clock::now() + reserve);
        }
    }

    bool isCleaning() const { return cleaning; }

    // Returns the time left for the work, or for the cleanup once that has begun; never negative.
    Milliseconds left() const {
        const auto until = cleaning ? end : end - reserve;
        return std::max(Milliseconds(0),
                        std::chrono::duration_cast<Milliseconds>(until - Clock::now()));
    }

private:
    static constexpr Milliseconds LONGEST_CLEANUP{5000};

    Milliseconds reserve;
    Clock::time_point end;
    bool cleaning = false;
};

}  // namespace Efictl
