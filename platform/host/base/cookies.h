#pragma once

#include <string>

namespace VeskLib::Host {

// Returns true if the browser speaks TLS, to the web server or to a proxy that the server believes.
bool isSecureRequest();

// The name by which a cookie of the board travels. Over HTTPS it begins with "__Host-": browsers
// take and send such a cookie over HTTPS only, and from this very host.
std::string cookieName(const std::string& name);

// The value of a Set-Cookie header for this cookie: for all paths, not for scripts, not sent along
// from other sites. Without `maxAgeSeconds` the browser forgets it when it ends.
std::string makeCookie(const std::string& name, const std::string& value, long maxAgeSeconds = -1);

}  // namespace VeskLib::Host
