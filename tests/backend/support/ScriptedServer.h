#pragma once

#include "tests/backend/support/hexadecimalText.h"

#include <functional>
#include <thread>

namespace VeskLib::Test {

// Replaces the back-end: listens on the board's socket, accepts one client and runs a script on its
// connection. BOARD_ROOT must name a root.
class ScriptedServer {
public:
    // `script` gets the descriptor of the connection, which is closed when it returns.
    explicit ScriptedServer(std::function<void(int client)> script);
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    // Waits until the script has returned.
    ~ScriptedServer();

private:
    int listener;
    std::thread thread;
};

// Opens a listening socket at the back-end's path. The caller must close it.
int openBoardSocket(int pendingClients);

// Connects to the board's socket as a client does. Returns -1 if no process listens there.
int connectToBoard();

// The same, but returns -1 instead of waiting if the socket's backlog is full.
int connectToBoardWithoutWaiting();

// Sends all bytes. Ignores a closed connection.
void sendBytes(int descriptor, const Bytes& bytes);

// Receives `size` bytes, or fewer if the connection ends or is silent for too long.
Bytes receiveBytes(int descriptor, std::size_t size);

// Receives a frame, including its length prefix.
Bytes receiveFramed(int descriptor);

// Returns the bytes with their length prefix.
Bytes framed(const Bytes& bytes);

// Waits until the other side closes the connection; the first function reads and discards what it
// sends.
void waitForEnd(int descriptor);
void waitForHangUp(int descriptor);

}  // namespace VeskLib::Test
