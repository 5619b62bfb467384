#pragma once

#include "board/backend/Answer.h"
#include "board/backend/ConnectionLimits.h"
#include "board/backend/WakeEvent.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <thread>

namespace VeskLib::Board {

// The connections of the back-end's clients. Each is taken and served by one worker, a thread of
// its own, so that a slow or silent client holds up nobody else. A few idle workers wait for the
// next clients, and the kernel wakes one of them for each.
class ConnectionPool {
public:
    // Takes clients from `listener`, a listening socket that blocks. It stays the caller's and must
    // outlive the pool; the pool shuts it down at its end. Throws std::system_error without a
    // descriptor of its own.
    ConnectionPool(int listener, RequestHandler handler, const ConnectionLimits& limits);
    ConnectionPool(const ConnectionPool&) = delete;
    ConnectionPool& operator=(const ConnectionPool&) = delete;

    // Takes no more clients and ends every connection; requests under way are still answered.
    ~ConnectionPool();

    // Keeps workers there for the clients until `stopDescriptor` becomes readable; sleeps while
    // there is nothing to do for that. For one thread. A failure is logged and tried again.
    void run(int stopDescriptor);

private:
    enum class State {
        IDLE,      // waits for a client
        WAITING,   // for a request of its client
        WORKING,   // on one
        ENDING,    // asked to make room; a request that comes in the same moment is not begun
        FINISHED,  // its thread has nothing left to do
    };
    struct Worker {
        State state = State::IDLE;
        int client = -1;                              // its descriptor; none while IDLE or FINISHED
        std::chrono::steady_clock::time_point since;  // when the state began
        std::thread thread;
    };

    bool keepIdleWorkers();
    bool needsWorker() const;
    bool startWorker();
    void makeRoom();
    void turnAway() const;
    void endQuietest();

    void work(Worker& worker);
    int nextClient();
    bool take(Worker& worker, int client);
    void serve(Worker& worker);
    bool enter(Worker& worker, State state);
    bool release(Worker& worker);

    bool isEnding();
    void shutDownClients(int how) const;
    void joinFinished();
    bool allFinished() const;

    const int listener;
    const RequestHandler handler;
    const ConnectionLimits limits;
    const WakeEvent wake;  // for run(): the last idle worker is taken, or one has finished
    bool threadsFail = false;
    std::mutex guard;  // of all below
    std::condition_variable finished;
    std::list<Worker> workers;
    std::size_t idle = 0;
    bool ending = false;
};

}  // namespace VeskLib::Board
