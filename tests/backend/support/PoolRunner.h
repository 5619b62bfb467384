#pragma once

#include "board/backend/ConnectionPool.h"

#include <sys/types.h>

#include <memory>
#include <thread>

namespace VeskLib::Test {

// A connection pool at work, behind a socket without a name in any folder.
class PoolRunner {
public:
    PoolRunner(Board::RequestHandler handler, const Board::ConnectionLimits& limits);
    PoolRunner(const PoolRunner&) = delete;
    PoolRunner& operator=(const PoolRunner&) = delete;

    // Ends the pool.
    ~PoolRunner();

    // Connects a socket: a new one, which is the caller's, or a given one.
    int connect() const;
    void connect(int client) const;

    // The thread that runs the pool.
    pid_t supervisor() const { return supervisorNumber; }

private:
    const int listener;
    const Board::WakeEvent stop;
    std::unique_ptr<Board::ConnectionPool> pool;
    pid_t supervisorNumber = -1;
    std::thread thread;
};

}  // namespace VeskLib::Test
