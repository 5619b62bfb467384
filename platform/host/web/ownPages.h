#pragma once

#include <string>

namespace VeskLib::Host {

// The function whose users see the actions of all users. The page of the latest actions has the
// same number, but every user may open it.
inline constexpr int ACTIVITY_FUNCTION = 110;

// The page to return to after a login is given by its function number, so that no link can redirect
// to another site.

// Returns the path of the page of a function, by its decimal number; "" for any other text.
std::string pageOfFunction(const std::string& number);

// Returns the function number of the requested page, or, for a POST, of the page that it comes
// from; "" if pageOfFunction() does not know the page.
std::string wantedFunction();

// Returns the path of the login form that continues to the page of `function`; that of the plain
// form for "".
std::string loginPath(const std::string& function);

}  // namespace VeskLib::Host
