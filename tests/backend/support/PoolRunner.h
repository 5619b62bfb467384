#pragma once

#include "board/backend/ConnectionPool.h"

#include <sys/types.h>

#include <memory>
#include <thread>

namespace VeskLib::Test {

// Runs a connection pool on an abstract socket.
class PoolRunner {
public:
    PoolRunner(Board::RequestHandler handler, const Board::ConnectionLimits& limits);
    PoolRunner(const PoolRunner&) = delete;
    PoolRunner& operator=(const PoolRunner&) = delete;

    // Stops the pool.
    ~PoolRunner();

    // Connects a new socket, which the caller must close, or a given one.
    int connect() const;
    void connect(int client) const;

    // Returns the id of the thread that runs the pool.
    pid_t supervisor() const { return supervisorNumber; }

private:
    const int listener;
    const Board::WakeEvent stop;
    std::unique_ptr<Board::ConnectionPool> pool;
    pid_t supervisorNumber = -1;
    std::thread thread;
};

}  // namespace VeskLib::Test
