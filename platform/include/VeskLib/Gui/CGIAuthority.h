#pragma once

#include <string>

namespace VeskLib::Gui {

// The rights of the request's user, filled when the session is checked.
struct CGIAuthority {
    int everyFunction = 0;                   // not 0: the user may use every function
    const std::string* functions = nullptr;  // numbers between commas; not owned; null: none
};

}  // namespace VeskLib::Gui
