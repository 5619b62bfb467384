#include "client/board/repeat.h"

#include "client/interruption.h"

#include <thread>

namespace Efictl {

namespace {

using Milliseconds = Schedule::Milliseconds;

const int MOST_REPEATS = 4;  // after a failed connection; the waits add up to 7.5 s
const Milliseconds FIRST_WAIT{500};
const Milliseconds LONGEST_WAIT{8000};
const Milliseconds POLL_INTERVAL{50};  // for signals

}  // namespace

void Attempts::waitAfter(const PassingFailure& failure) {
    const Milliseconds wait =
        std::min<Milliseconds>(FIRST_WAIT * (1 << std::min(failed, 8)), LONGEST_WAIT);
    ++failed;
    const bool tooOften =
        failure.cause() == PassingFailure::Cause::CONNECTION && failed > MOST_REPEATS;
    if (tooOften || schedule.isCleaning() || schedule.left() <= wait) {
        throw failure;
    }
    const auto end = Schedule::Clock::now() + wait;
    while (Schedule::Clock::now() < end) {
        endWhenInterrupted();
        std::this_thread::sleep_for(POLL_INTERVAL);
    }
}

}  // namespace Efictl
