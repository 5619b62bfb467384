#pragma once

#include "board/backend/Answer.h"
#include "board/backend/ConnectionLimits.h"

#include <vector>

namespace VeskLib::Board {

// Receives and answers the requests of one client, one after the other. For one thread, but another
// may shut down the descriptor, which ends a wait. Exceptions of the handler are passed on.
class Conversation {
public:
    // All arguments are borrowed and must outlive the object.
    Conversation(int descriptor, const RequestHandler& handler, const ConnectionLimits& limits);

    // Waits for a request. Returns false if none arrives and the connection must be closed.
    bool receive();

    // Answers the received request. Returns false if the connection must be closed.
    bool answer();

private:
    bool isAwaited() const;
    void sendTorn(const Answer& answer) const;

    const int descriptor;
    const RequestHandler& handler;
    const ConnectionLimits& limits;
    std::vector<unsigned char> received;
    bool whole = false;  // true if `received` is a complete frame
};

}  // namespace VeskLib::Board
