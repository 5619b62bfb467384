#pragma once

#include <chrono>
#include <cstddef>

namespace VeskLib::Host {

// A thread's turn at the audit log. The threads of a process get it in the order in which they
// come; by the lock file alone, whoever looks just when it becomes free would get it, and a thread
// could go without for long.
class Turn {
public:
    // Waits for at most `longest`. Throws PException (AUDIT_NOT_WRITTEN) when the turn does not
    // come.
    explicit Turn(std::chrono::milliseconds longest);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

    // What is left of the time; 0 when nothing is.
    int remainingMilliseconds() const;

    // How many threads wait for theirs.
    static std::size_t waiting();

private:
    const std::chrono::steady_clock::time_point end;
};

}  // namespace VeskLib::Host
