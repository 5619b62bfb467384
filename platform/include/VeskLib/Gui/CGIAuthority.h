#pragma once

#include <string>

namespace VeskLib::Gui {

// The rights of the request's user, set when the session is checked. All zero means no rights.
//
// Has no member initialisers because the program zeroes it, whatever members a board's has.
struct CGIAuthority {
    int everyFunction;             // nonzero: the user may use every function
    const std::string* functions;  // numbers, each between commas; not owned; null: none
};

}  // namespace VeskLib::Gui
