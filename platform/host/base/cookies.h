#pragma once

#include <string>

namespace VeskLib::Host {

// Returns true if the browser uses TLS, to the web server or to a proxy that the server trusts.
bool isSecureRequest();

// Returns the name under which the board's cookie `name` is sent. Over HTTPS the name begins with
// "__Host-", so that browsers accept and send the cookie only over HTTPS and only for this host.
std::string cookieName(const std::string& name);

// Returns the value of a Set-Cookie header for this cookie: for all paths, hidden from scripts, and
// not sent with requests from other sites. If `maxAgeSeconds` is negative, the browser deletes the
// cookie when it closes.
std::string makeCookie(const std::string& name, const std::string& value, long maxAgeSeconds = -1);

}  // namespace VeskLib::Host
