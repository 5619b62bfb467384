#pragma once

#include <cstddef>

namespace VeskLib::Board {

struct ConnectionLimits {
    // 64, and as many more as there are logins that wait (LoginQueue::MOST_WAITING).
    std::size_t connections = 112;
    // So many threads wait for the next clients, so that few clients have to wait for a thread.
    std::size_t idleWorkers = 4;
    // A connection that sends no whole request for so long is ended.
    int requestMilliseconds = 30000;
    // For a client that does not take its reply.
    int replyMilliseconds = 10000;
    // When all connections are taken and another client waits, the one that has sent nothing for
    // the longest time makes room, if it is that long: long enough for a program that a busy
    // machine keeps from going on between two requests, and well within the time that the other one
    // waits.
    int quietMilliseconds = 3000;
    // At the end, for requests under way.
    int endMilliseconds = 2000;
};

}  // namespace VeskLib::Board
