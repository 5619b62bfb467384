#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// The environment variable `name`; empty when it is not set.
std::string readEnvironment(const char* name);

// The value of the first cookie `name` in the request's HTTP_COOKIE; empty when there is none.
std::string readCookie(const std::string& name);

// The values of the cookies `name` in the request's HTTP_COOKIE, in their order. There may be
// several: browsers send those of all paths, and of all ports of a host name.
std::vector<std::string> readCookies(const std::string& name);

}  // namespace VeskLib::Host
