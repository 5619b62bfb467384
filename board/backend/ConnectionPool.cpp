#include "board/backend/ConnectionPool.h"

#include "board/backend/log.h"
#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/FrameStream.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace VeskLib::Board {

using Clock = std::chrono::steady_clock;

ConnectionPool::ConnectionPool(RequestHandler handler, const ConnectionLimits& limits)
    : handler(std::move(handler)), limits(limits) {
}

ConnectionPool::~ConnectionPool() {
    std::unique_lock<std::mutex> lock(guard);
    // No more requests; the replies of those under way still go out.
    shutDownAll(SHUT_RD);
    finished.wait_for(lock, std::chrono::milliseconds(limits.endMilliseconds),
                      [this] { return allFinished(); });
    shutDownAll(SHUT_RDWR);
    finished.wait(lock, [this] { return allFinished(); });
    joinFinished();
}

bool ConnectionPool::hasRoom() {
    const std::scoped_lock lock(guard);
    joinFinished();
    if (connections.size() < limits.connections) {
        return true;
    }
    endQuietest();
    return false;
}

void ConnectionPool::serve(int descriptor) {
    const std::scoped_lock lock(guard);
    const std::size_t before = connections.size();
    try {
        Connection& connection = connections.emplace_back();
        connection.descriptor = descriptor;
        connection.since = Clock::now();
        connection.thread = std::thread([this, &connection] { work(connection); });
    } catch (const std::exception& failure) {
        // No thread, or no memory for one.
        logFailure("a client is turned away: ", failure);
        ::close(descriptor);
        connections.resize(before);
    }
}

void ConnectionPool::work(Connection& connection) {
    try {
        while (answerOne(connection)) {
        }
    } catch (const std::exception& failure) {
        // Most likely out of memory. The client sees its connection end; others are served on.
        logFailure("a connection is given up: ", failure);
    }
    const std::scoped_lock lock(guard);
    ::close(connection.descriptor);
    connection.state = State::FINISHED;
    finished.notify_all();
}

bool ConnectionPool::answerOne(Connection& connection) {
    if (!enter(connection, State::WAITING)) {
        return false;
    }
    std::vector<unsigned char> bytes;
    const Host::StreamResult received = Host::receiveFrame(
        connection.descriptor, bytes, Host::Deadline(limits.requestMilliseconds));
    const bool whole = received == Host::StreamResult::DONE;
    if ((!whole && received != Host::StreamResult::OVERSIZED) ||
        !enter(connection, State::WORKING)) {
        return false;
    }
    Host::RequestFrame request;
    const bool understood = whole && decode(bytes, request);
    const Answer answer = understood
                              ? handler(request)
                              : Answer(Host::ReplyFrame{Host::BACKEND_MALFORMED_REQUEST, {}});
    if (answer.sentBytes) {
        sendTorn(connection.descriptor, answer);
        return false;
    }
    // Behind a frame that makes no sense nobody knows where the next one begins.
    return Host::sendFrame(connection.descriptor, encode(answer.reply),
                           Host::Deadline(limits.replyMilliseconds)) == Host::StreamResult::DONE &&
           understood;
}

void ConnectionPool::sendTorn(int descriptor, const Answer& answer) const {
    std::vector<unsigned char> framed = Host::withLength(encode(answer.reply));
    framed.resize(std::min(framed.size(), *answer.sentBytes));
    Host::sendBytes(descriptor, framed, Host::Deadline(limits.replyMilliseconds));
    if (framed.empty()) {
        Host::waitUntilReady(descriptor, POLLIN, Host::Deadline(limits.requestMilliseconds));
    }
}

// False when the connection has been asked to make room, which nothing takes back.
bool ConnectionPool::enter(Connection& connection, State state) {
    const std::scoped_lock lock(guard);
    if (connection.state == State::ENDING) {
        return false;
    }
    connection.state = state;
    connection.since = Clock::now();
    return true;
}

void ConnectionPool::endQuietest() {
    Connection* quietest = nullptr;
    for (Connection& connection : connections) {
        if (connection.state == State::ENDING) {
            return;  // one is enough
        }
        if (connection.state == State::WAITING &&
            (quietest == nullptr || connection.since < quietest->since)) {
            quietest = &connection;
        }
    }
    const auto latest = Clock::now() - std::chrono::milliseconds(limits.quietMilliseconds);
    if (quietest != nullptr && quietest->since <= latest) {
        quietest->state = State::ENDING;
        ::shutdown(quietest->descriptor, SHUT_RDWR);
    }
}

void ConnectionPool::shutDownAll(int how) {
    for (const Connection& connection : connections) {
        if (connection.state != State::FINISHED) {
            ::shutdown(connection.descriptor, how);
        }
    }
}

void ConnectionPool::joinFinished() {
    connections.remove_if([](Connection& connection) {
        if (connection.state != State::FINISHED) {
            return false;
        }
        // It has let go of the lock at the latest when it ends, and needs it no more.
        connection.thread.join();
        return true;
    });
}

bool ConnectionPool::allFinished() const {
    return std::all_of(connections.begin(), connections.end(), [](const Connection& connection) {
        return connection.state == State::FINISHED;
    });
}

}  // namespace VeskLib::Board
