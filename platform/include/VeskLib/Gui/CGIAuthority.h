#pragma once

#include <string>

namespace VeskLib::Gui {

// The rights of the request's user, filled when the session is checked. All zero: no rights.
//
// Has no initialisers: the program zeroes it, whatever a board's fields are.
struct CGIAuthority {
    int everyFunction;             // not 0: the user may use every function
    const std::string* functions;  // numbers between commas; not owned; null: none
};

}  // namespace VeskLib::Gui
