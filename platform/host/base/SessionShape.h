#pragma once

#include <string>

namespace VeskLib::Host {

// The cookie value of a login session is its identifier (16 lowercase hexadecimal digits), "-" and
// its secret token (32 digits). The identifier is used in file names; alone it is not a login.

// Return true if `text` has the form of a cookie value or of an identifier. Call them before using
// either in a path.
bool isCookieValue(const std::string& text);
bool isSessionIdentifier(const std::string& text);

// Returns the identifier in a cookie value; an empty string if the value is malformed.
std::string identifierOf(const std::string& cookieValue);

}  // namespace VeskLib::Host
