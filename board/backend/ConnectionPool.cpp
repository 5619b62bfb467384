#include "board/backend/ConnectionPool.h"

#include "board/backend/Conversation.h"
#include "board/backend/log.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <utility>

namespace VeskLib::Board {

using Clock = std::chrono::steady_clock;

namespace {

// How long to ignore new clients when there is no room for one.
const int FULL_MILLISECONDS = 20;
const int NO_LIMIT = -1;

// Returns true if a client is waiting to be accepted.
bool someoneWaits(int listener, int milliseconds) {
    pollfd waited = {listener, POLLIN, 0};
    return ::poll(&waited, 1, milliseconds) > 0;
}

}  // namespace

ConnectionPool::ConnectionPool(int listener, RequestHandler handler, const ConnectionLimits& limits)
    : listener(listener), handler(std::move(handler)), limits(limits) {
}

ConnectionPool::~ConnectionPool() {
    std::unique_lock<std::mutex> lock(guard);
    ending = true;
    ::shutdown(listener, SHUT_RDWR);  // wakes idle workers so that they exit
    // No more requests are received; replies to current ones are still sent.
    shutDownClients(SHUT_RD);
    finished.wait_for(lock, std::chrono::milliseconds(limits.endMilliseconds),
                      [this] { return allFinished(); });
    shutDownClients(SHUT_RDWR);
    finished.wait(lock, [this] { return allFinished(); });
    joinFinished();
}

void ConnectionPool::run(int stopDescriptor) {
    while (true) {
        const bool ready = keepIdleWorkers();
        pollfd waited[] = {{stopDescriptor, POLLIN, 0},
                           {wake.descriptor(), POLLIN, 0},
                           {ready ? -1 : listener, POLLIN, 0}};
        ::poll(waited, 3, NO_LIMIT);
        if (waited[0].revents != 0) {
            return;
        }
        wake.clear();
        if (waited[2].revents != 0 && !keepIdleWorkers()) {
            makeRoom();
            ::poll(waited, 2, FULL_MILLISECONDS);
        }
    }
}

// Starts workers as needed. Returns false if none is idle, because all connections are in use or no
// thread can be started.
bool ConnectionPool::keepIdleWorkers() {
    const std::scoped_lock lock(guard);
    joinFinished();
    while (needsWorker() && startWorker()) {
    }
    return idle > 0;
}

bool ConnectionPool::needsWorker() const {
    return workers.size() < limits.connections &&
           (idle == 0 || workers.size() < limits.idleWorkers);
}

bool ConnectionPool::startWorker() {
    const std::size_t before = workers.size();
    try {
        Worker& worker = workers.emplace_back();
        worker.thread = std::thread([this, &worker] { work(worker); });
        ++idle;
        threadsFail = false;
        return true;
    } catch (const std::exception& failure) {
        // No thread, or no memory for one. Logged only once, because it is retried often.
        if (!threadsFail) {
            logFailure("cannot start a thread for clients: ", failure);
        }
        threadsFail = true;
        workers.resize(before);
        return false;
    }
}

// Makes room if a client is waiting and no worker is idle.
void ConnectionPool::makeRoom() {
    const std::scoped_lock lock(guard);
    if (idle > 0 || !someoneWaits(listener, 0)) {
        return;
    }
    if (workers.empty()) {
        turnAway();
    } else {
        endQuietest();
    }
}

// Closes a client's connection. Without any worker, the client would otherwise wait too long.
void ConnectionPool::turnAway() const {
    const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) {
        logFailure("rejected a client: ", "there is no thread to serve it");
        ::close(client);
    }
}

void ConnectionPool::endQuietest() {
    Worker* quietest = nullptr;
    for (Worker& worker : workers) {
        if (worker.state == State::ENDING) {
            return;  // one connection is already ending
        }
        if (worker.state == State::WAITING &&
            (quietest == nullptr || worker.since < quietest->since)) {
            quietest = &worker;
        }
    }
    const auto latest = Clock::now() - std::chrono::milliseconds(limits.quietMilliseconds);
    if (quietest != nullptr && quietest->since <= latest) {
        quietest->state = State::ENDING;
        ::shutdown(quietest->client, SHUT_RDWR);
    }
}

// The main function of a worker's thread.
void ConnectionPool::work(Worker& worker) {
    do {
        const int client = nextClient();
        if (take(worker, client)) {
            serve(worker);
        }
    } while (release(worker));
}

// Waits for a client and returns its descriptor, or -1 when the pool ends.
int ConnectionPool::nextClient() {
    bool logged = false;
    while (true) {
        const int client = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        const int reason = errno;
        if (client >= 0 || isEnding()) {
            return client;
        }
        if (!logged) {
            logFailure("cannot accept a client: ", std::strerror(reason));
            logged = true;
        }
        // Most likely out of descriptors, which accept4() reports even if no client is waiting.
        // Retrying at once would only keep the processor busy.
        ::poll(nullptr, 0, FULL_MILLISECONDS);
        someoneWaits(listener, NO_LIMIT);
    }
}

// Marks the worker as no longer idle. Returns false if it has no client to serve.
bool ConnectionPool::take(Worker& worker, int client) {
    const std::scoped_lock lock(guard);
    worker.client = client;
    if (--idle == 0) {
        wake.signal();
    }
    return client >= 0 && !ending;
}

void ConnectionPool::serve(Worker& worker) {
    try {
        Conversation conversation(worker.client, handler, limits);
        while (enter(worker, State::WAITING) && conversation.receive() &&
               enter(worker, State::WORKING) && conversation.answer()) {
        }
    } catch (const std::exception& failure) {
        // Most likely out of memory. Only this client's connection ends.
        logFailure("connection aborted: ", failure);
    }
}

// Sets the worker's state. Returns false if its connection is ending to make room, which is final.
bool ConnectionPool::enter(Worker& worker, State state) {
    const std::scoped_lock lock(guard);
    if (worker.state == State::ENDING) {
        return false;
    }
    worker.state = state;
    worker.since = Clock::now();
    return true;
}

// Closes the client's connection. Returns false if the worker is no longer needed.
bool ConnectionPool::release(Worker& worker) {
    const std::scoped_lock lock(guard);
    if (worker.client >= 0) {
        ::close(worker.client);
        worker.client = -1;
    }
    if (!ending && idle < limits.idleWorkers) {
        worker.state = State::IDLE;
        ++idle;
        return true;
    }
    worker.state = State::FINISHED;
    finished.notify_all();
    wake.signal();
    return false;
}

bool ConnectionPool::isEnding() {
    const std::scoped_lock lock(guard);
    return ending;
}

void ConnectionPool::shutDownClients(int how) const {
    for (const Worker& worker : workers) {
        if (worker.client >= 0) {
            ::shutdown(worker.client, how);
        }
    }
}

void ConnectionPool::joinFinished() {
    workers.remove_if([](Worker& worker) {
        if (worker.state != State::FINISHED) {
            return false;
        }
        // Cannot deadlock, because a finished worker does not lock `guard` again.
        worker.thread.join();
        return true;
    });
}

bool ConnectionPool::allFinished() const {
    return std::all_of(workers.begin(), workers.end(),
                       [](const Worker& worker) { return worker.state == State::FINISHED; });
}

}  // namespace VeskLib::Board
