#pragma once

#include "platform/host/channel/Frame.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace VeskLib::Board {

// What a client gets: a reply, and how much of it when it is to go wrong.
struct Answer {
    Answer(Host::ReplyFrame reply) : reply(std::move(reply)) {}  // NOLINT: a reply is an answer

    Host::ReplyFrame reply;
    // When set, so many bytes of the frame leave, and then the connection ends. Nothing at all
    // leaves for 0, and the connection stays until the client ends it.
    std::optional<std::size_t> sentBytes;
};

using RequestHandler = std::function<Answer(const Host::RequestFrame&)>;

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
    void sendTorn(int descriptor, const Answer& answer) const;
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
