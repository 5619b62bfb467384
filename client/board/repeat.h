#pragma once

#include "client/Failure.h"
#include "client/Schedule.h"

namespace Efictl {

// Decides whether and when to retry a failed request: a few times after a failed connection, and
// until the deadline while the board is busy.
class Attempts {
public:
    explicit Attempts(const Schedule& schedule) : schedule(schedule) {}

    // Waits until the next attempt is due. Throws `failure` if no attempt is left, and Failure
    // (FAILED) if a signal arrives during the wait.
    void waitAfter(const PassingFailure& failure);

private:
    const Schedule& schedule;
    int failed = 0;
};

// Calls `request`, retries it after each PassingFailure, and returns its result.
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
