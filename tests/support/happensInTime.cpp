#include "tests/support/happensInTime.h"

#include <chrono>
#include <thread>

namespace VeskLib::Test {

namespace {

using Clock = std::chrono::steady_clock;

const std::chrono::seconds PATIENCE(100);
const std::chrono::milliseconds PAUSE(1);

}  // namespace

bool happensInTime(const std::function<bool()>& condition) {
    const Clock::time_point end = Clock::now() + PATIENCE;
    while (!condition()) {
        if (Clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(PAUSE);
    }
    return true;
}

}  // namespace VeskLib::Test
