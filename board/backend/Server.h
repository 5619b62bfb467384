#pragma once

#include "board/backend/ConnectionPool.h"

#include <string>

namespace VeskLib::Board {

// Listens on a Unix-domain socket, behind which a ConnectionPool serves the clients.
class Server {
public:
    // Listens on `path`; a socket that a killed back-end left there is taken over, so the caller
    // must know that no other lives. Throws std::runtime_error when that is not possible.
    Server(std::string path, RequestHandler handler, const ConnectionLimits& limits = {});

    // Serves until `stopDescriptor` becomes readable. Requests that are under way then are answered
    // by the time the server is gone, and with it the socket.
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
