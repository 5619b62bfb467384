#pragma once

#include <cstddef>

namespace VeskLib::Host {

class Deadline;

// A thread's turn at the audit log. The threads of a process get it in the order in which they ask.
// With the lock file alone, a thread could starve, because the first to retry after a release gets
// the lock.
class Turn {
public:
    // Waits for the turn. Throws PException (AUDIT_NOT_WRITTEN) if the deadline passes first.
    explicit Turn(const Deadline& deadline);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();

    // Returns the number of threads that are waiting.
    static std::size_t waiting();
};

}  // namespace VeskLib::Host
