#pragma once

#include "platform/host/channel/Frame.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace VeskLib::Board {

using RequestHandler = std::function<Host::ReplyFrame(const Host::RequestFrame&)>;

struct ConnectionLimits {
    std::size_t connections = 64;
    // A connection that sends no whole request for so long is ended.
    int requestMilliseconds = 30000;
    // For a client that does not take its reply.
    int replyMilliseconds = 10000;
    // When all connections are taken, the one that has sent nothing for the longest time makes
    // room, if it is that long.
    int quietMilliseconds = 500;
    // At the end, for requests under way.
    int endMilliseconds = 2000;
};

// The connections of the back-end's clients. Each has a thread of its own, so that a slow or silent
// client holds up nobody else.
class ConnectionPool {
public:
    ConnectionPool(RequestHandler handler, const ConnectionLimits& limits);
    ConnectionPool(const ConnectionPool&) = delete;
    ConnectionPool& operator=(const ConnectionPool&) = delete;

    // Ends every connection; requests under way are still answered.
    ~ConnectionPool();

    // Whether serve() may be called. When all connections are taken, a quiet one is asked to end;
    // there is room a moment later.
    bool hasRoom();

    // Serves the client behind `descriptor`, which the pool then owns. Does not wait.
    void serve(int descriptor);

private:
    enum class State {
        WAITING,   // for a request
        WORKING,   // on one
        ENDING,    // asked to make room; a request that comes in the same moment is not begun
        FINISHED,  // its thread has nothing left to do
    };
    struct Connection {
        int descriptor = -1;
        State state = State::WAITING;
        std::chrono::steady_clock::time_point since;  // when the state began
        std::thread thread;
    };

    void work(Connection& connection);
    bool answerOne(Connection& connection);
    bool enter(Connection& connection, State state);
    void endQuietest();
    void shutDownAll(int how);
    void joinFinished();
    bool allFinished() const;

    const RequestHandler handler;
    const ConnectionLimits limits;
    std::mutex guard;  // of `connections` and of all that is in them
    std::condition_variable finished;
    std::list<Connection> connections;
};

}  // namespace VeskLib::Board
