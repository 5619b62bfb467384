#pragma once

#include "board/backend/Answer.h"
#include "board/backend/ConnectionLimits.h"

#include <vector>

namespace VeskLib::Board {

// The requests of one client and their answers, in turns. For one thread; another may shut the
// descriptor down, which ends what waits for it. What the handler throws passes through.
class Conversation {
public:
    // Everything stays the caller's and must live as long.
    Conversation(int descriptor, const RequestHandler& handler, const ConnectionLimits& limits);

    // Waits for a request. False when none comes: the connection is to end.
    bool receive();

    // Answers the request that came. False when the connection is to end.
    bool answer();

private:
    bool isAwaited() const;
    void sendTorn(const Answer& answer) const;

    const int descriptor;
    const RequestHandler& handler;
    const ConnectionLimits& limits;
    std::vector<unsigned char> received;
    bool whole = false;  // whether `received` is all of a frame
};

}  // namespace VeskLib::Board
