#pragma once

#include <string>

namespace VeskLib::Host {

// A login session's cookie value is its identifier (16 lowercase hexadecimal digits), a "-" and its
// secret token (32 of them). The identifier alone may be seen in file names; it is no login.

// Whether `text` has the shape of a cookie value, and of an identifier. Checked before either
// touches a path.
bool isCookieValue(const std::string& text);
bool isSessionIdentifier(const std::string& text);

// The identifier in a cookie value; empty when the value is malformed.
std::string identifierOf(const std::string& cookieValue);

}  // namespace VeskLib::Host
