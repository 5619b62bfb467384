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

// The connections of the back-end's clients. Each is accepted and served by one worker, which is a
// thread, so that a slow or silent client does not delay others. A few idle workers wait for new
// clients; the kernel wakes one of them for each.
class ConnectionPool {
public:
    // Accepts clients from `listener`, a blocking listening socket. It is not owned and must
    // outlive the pool, whose destructor shuts it down. Throws std::system_error if no descriptor
    // is available.
    ConnectionPool(int listener, RequestHandler handler, const ConnectionLimits& limits);
    ConnectionPool(const ConnectionPool&) = delete;
    ConnectionPool& operator=(const ConnectionPool&) = delete;

    // Stops accepting clients, waits until the current requests are answered, and closes all
    // connections.
    ~ConnectionPool();

    // Provides workers for the clients until `stopDescriptor` becomes readable; sleeps when there
    // is nothing to do. Must be called by one thread only. Failures are logged and retried.
    void run(int stopDescriptor);

private:
    enum class State {
        IDLE,      // waits for a client
        WAITING,   // waits for a request
        WORKING,   // processes a request
        ENDING,    // must make room; a request that arrives now is not processed
        FINISHED,  // the thread is about to exit
    };
    struct Worker {
        State state = State::IDLE;
        int client = -1;                              // its descriptor; -1 while IDLE or FINISHED
        std::chrono::steady_clock::time_point since;  // the start of the state
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
    const WakeEvent wake;  // wakes run(): no worker is idle any more, or one has finished
    bool threadsFail = false;
    std::mutex guard;  // of all below
    std::condition_variable finished;
    std::list<Worker> workers;
    std::size_t idle = 0;
    bool ending = false;
};

}  // namespace VeskLib::Board
