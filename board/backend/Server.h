#pragma once

#include "board/backend/ConnectionPool.h"

#include <string>

namespace VeskLib::Board {

// Listens on a Unix domain socket, with a ConnectionPool that serves the clients.
class Server {
public:
    // Listens on `path`, replacing a socket that a killed back-end left there. The caller must make
    // sure that no other back-end is running. Throws std::runtime_error on failure.
    Server(std::string path, RequestHandler handler, const ConnectionLimits& limits = {});

    // Serves until `stopDescriptor` becomes readable. The destructor answers requests that are
    // under way then, and removes the socket.
    void run(int stopDescriptor);

private:
    struct Listener {
        explicit Listener(std::string path);
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        ~Listener();

        const std::string path;
        const int descriptor;
    };

    Listener listener;  // outlives the pool
    ConnectionPool pool;
};

}  // namespace VeskLib::Board
