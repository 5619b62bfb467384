#pragma once

#include <string>
#include <vector>

namespace VeskLib::Host {

// Returns the environment variable `name`; an empty string if it is not set.
std::string readEnvironment(const char* name);

// Returns the value of the first cookie `name` in the request's HTTP_COOKIE; an empty string if
// there is none.
std::string readCookie(const std::string& name);

// Returns the values of all cookies `name` in the request's HTTP_COOKIE, in their order. There may
// be several, because browsers send the cookies of all matching paths and of all ports of a host.
std::vector<std::string> readCookies(const std::string& name);

}  // namespace VeskLib::Host
