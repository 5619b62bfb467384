#pragma once

#include "board/backend/ConnectionPool.h"

#include <string>

namespace VeskLib::Board {

// Listens on a Unix-domain socket and hands every client to a ConnectionPool.
class Server {
public:
    // Listens on `path`; a socket that a killed back-end left there is taken over, so the caller
    // must know that no other lives. Throws std::runtime_error when that is not possible.
    Server(std::string path, RequestHandler handler, const ConnectionLimits& limits = {});
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Removes the socket.
    ~Server();

    // Serves until `stopDescriptor` becomes readable.
    void run(int stopDescriptor);

private:
    void acceptOne();

    const std::string path;
    int listener;
    ConnectionPool pool;
};

}  // namespace VeskLib::Board
