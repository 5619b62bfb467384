#pragma once

#include <cstddef>

namespace VeskLib::Board {

struct ConnectionLimits {
    // 64, plus the logins that may wait (LoginQueue::MOST_WAITING).
    std::size_t connections = 112;
    // Threads that wait for new clients, so that few clients have to wait for a thread.
    std::size_t idleWorkers = 4;
    // A connection that sends no complete request for this long is closed.
    int requestMilliseconds = 30000;
    // The time for a client to receive its reply.
    int replyMilliseconds = 10000;
    // If all connections are in use and another client waits, the connection that has been silent
    // the longest is closed, provided that it has been silent for this long. That is enough for a
    // program that a busy machine delays between two requests, and well within the time that the
    // other client waits.
    int quietMilliseconds = 3000;
    // The time for current requests to finish when the back-end ends.
    int endMilliseconds = 2000;
};

}  // namespace VeskLib::Board
