#pragma once

#include <string>

namespace VeskLib::Host {

// The environment variable `name`; empty when it is not set.
std::string readEnvironment(const char* name);

// The value of the cookie `name` in the request's HTTP_COOKIE; empty when there is none.
std::string readCookie(const std::string& name);

}  // namespace VeskLib::Host
