#pragma once

#include "tests/backend/support/hexadecimalText.h"

#include <functional>
#include <thread>

namespace VeskLib::Test {

// Stands in for the back-end: listens on the board's socket, takes one client and does with it
// what a test says. BOARD_ROOT must name a root.
class ScriptedServer {
public:
    // `script` gets the connected client's descriptor, which is closed when it returns.
    explicit ScriptedServer(std::function<void(int client)> script);
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    // Waits until the script has ended.
    ~ScriptedServer();

private:
    int listener;
    std::thread thread;
};

// Opens a listening socket where the board's programs look for the back-end.
int openBoardSocket(int pendingClients);

// Connects to the board's socket as a client does; -1 when nobody listens.
int connectToBoard();

// The same without waiting while the board's queue of new clients is full.
int connectToBoardWithoutWaiting();

// Sends all the bytes; passes over a client that has gone.
void sendBytes(int descriptor, const Bytes& bytes);

// Receives exactly `size` bytes, fewer only when the connection ends before.
Bytes receiveBytes(int descriptor, std::size_t size);

// Receives a frame with the length in front.
Bytes receiveFramed(int descriptor);

// A frame's bytes with their length in front.
Bytes framed(const Bytes& bytes);

// Waits until the other side ends the connection, reading what it sends until then; or without
// reading.
void waitForEnd(int descriptor);
void waitForHangUp(int descriptor);

}  // namespace VeskLib::Test
