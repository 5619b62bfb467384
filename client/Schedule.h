#pragma once

#include <algorithm>
#include <chrono>

namespace Efictl {

// The time that a command has. A part at its end is kept for what has to happen even after a
// failure: the discard of an uploaded file, and the logout.
class Schedule {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    explicit Schedule(Milliseconds total)
        : reserve(std::min<Milliseconds>(LONGEST_CLEANUP, total / 4)), end(Clock::now() + total) {}

    // Only the end is left to do. Ends soon, however much time there was for the work.
    void beginCleanup() {
        if (!cleaning) {
            cleaning = true;
            end = std::min(end, Clock::now() + reserve);
        }
    }

    bool isCleaning() const { return cleaning; }

    // Returns the time that is left for what is going on now; never negative.
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
