#pragma once

#include <string>

namespace VeskLib::Host {

// The function that lets its user see what everybody did on the board; the number is also that of
// the page of the latest actions, which everybody may open.
inline constexpr int ACTIVITY_FUNCTION = 110;

// The pages that one returns to after a login are named by the number of their function, so that no
// address that somebody sends leads to another place.

// Returns the path of the page of the function with that number, in decimal; "" for every other
// text.
std::string pageOfFunction(const std::string& number);

// Returns the number of the page that the request asks for, or, for a POST, the page that it comes
// from; "" if that is none of pageOfFunction().
std::string wantedFunction();

// Returns the path of the login form that leads on to that page; the plain one for "".
std::string loginPath(const std::string& function);

}  // namespace VeskLib::Host
