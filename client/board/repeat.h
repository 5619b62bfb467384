#pragma once

#include "client/Failure.h"
#include "client/Schedule.h"

namespace Efictl {

// Decides whether and when what failed is tried again: after a failure of the connection a few
// times, while the board is busy as long as there is time.
class Attempts {
public:
    explicit Attempts(const Schedule& schedule) : schedule(schedule) {}

    // Waits until it is time for the next attempt. Throws `failure` if there is to be none, and
    // Failure (FAILED) if a signal comes meanwhile.
    void waitAfter(const PassingFailure& failure);

private:
    const Schedule& schedule;
    int failed = 0;
};

// Returns what `request` returns, which is called again after a PassingFailure.
template <typename Call>
auto repeat(const Schedule& schedule, Call request) {
    Attempts attempts(schedule);
    while (true) {
        try {
            return request();
        } catch (const PassingFailure& failure) {
            attempts.waitAfter(failure);
        }
    }
}

}  // namespace Efictl
