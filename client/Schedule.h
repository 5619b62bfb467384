#pragma once

#include <algorithm>
#include <chrono>

namespace Efictl {

// The deadlines of a command: one for its work, and one for each step of the cleanup (discarding an
// uploaded file, logging out). The cleanup also follows a failure.
class Schedule {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    // Reserves up to a quarter of the time for the cleanup, and the same time for each step.
    explicit Schedule(Milliseconds total)
        : step(std::min<Milliseconds>(LONGEST_STEP, total / 8)),
          end(Clock::now() + total - STEPS * step) {}

    // Begins a step of the cleanup. It gets at most the time reserved for it, even if more is left.
    void beginCleanupStep() {
        cleaning = true;
        end = std::min(end, Clock::now()) + step;
    }

    bool isCleaning() const { return cleaning; }

    // Returns the time left for the work or the step of the cleanup; never negative.
    Milliseconds left() const {
        return std::max(Milliseconds(0),
                        std::chrono::duration_cast<Milliseconds>(end - Clock::now()));
    }

private:
    static constexpr int STEPS = 2;
    static constexpr Milliseconds LONGEST_STEP{5000};

    Milliseconds step;
    Clock::time_point end;
    bool cleaning = false;
};

}  // namespace Efictl
