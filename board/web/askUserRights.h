#pragma once

#include <string>

namespace VeskLib::Board {

// What a user of the board may do.
struct UserRights {
    bool everyFunction = false;
    std::string functions;  // function numbers, each between commas: ",105,106,"
};

// Asks the back-end whether a user name and a password belong together. 0 with `rights` filled, or
// an error code with `rights` unchanged: LOGIN_NOT_ACCEPTED, one of the channel's, or another of
// the back-end's.
int askUserRights(const std::string& user, const std::string& password, UserRights& rights);

}  // namespace VeskLib::Board
