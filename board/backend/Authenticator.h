#pragma once

#include "board/backend/BoardDescription.h"

#include <mutex>
#include <string>

namespace VeskLib::Board {

// Checks user names and passwords. May be used by several threads.
class Authenticator {
public:
    // `board` must outlive the object.
    explicit Authenticator(const BoardDescription& board);

    // Returns the user, or null if the name or the password is wrong. Takes about as long for a
    // name that does not exist as for one that does.
    const User* authenticate(const std::string& name, const std::string& password);

private:
    const BoardDescription& board;
    std::string decoyHash;  // checked if there is no such user
    std::mutex computing;   // one hash at a time, because each needs much memory
};

}  // namespace VeskLib::Board
