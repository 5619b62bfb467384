#pragma once

#include <cstddef>

namespace VeskLib::Host {

class Deadline;

// A thread's turn at the audit log. The threads of a process get it in the order in which they
// come; by the lock file alone, whoever looks just when it becomes free would get it, and a thread
// could go without for long.
class Turn {
public:
    // Throws PException (AUDIT_NOT_WRITTEN) if the turn does not come within the deadline.
    explicit Turn(const Deadline& deadline);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

    // How many threads wait for theirs.
    static std::size_t waiting();
};

}  // namespace VeskLib::Host
