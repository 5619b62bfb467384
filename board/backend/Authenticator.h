#pragma once

#include "board/backend/BoardDescription.h"

#include <mutex>
#include <string>

namespace VeskLib::Board {

// Decides whether a user name and a password belong together. May be used by several threads.
class Authenticator {
public:
    // `board` must outlive the object.
    explicit Authenticator(const BoardDescription& board);

    // The user, or null when the name or the password is wrong. Takes about as long for a name
    // that does not exist as for one that does.
    const User* authenticate(const std::string& name, const std::string& password);

private:
    const BoardDescription& board;
    std::string decoyHash;  // checked in place of the hash of a user that does not exist
    std::mutex computing;   // a hash takes much memory; one at a time bounds it
};

}  // namespace VeskLib::Board
