#pragma once

#include "platform/host/session/Session.h"

#include <string>

namespace VeskLib::Test {

// Publishes a user of the board with these rights, beside those that are published.
void publishUser(const std::string& name, bool everyFunction, const std::string& functions);

// Starts a session for a user that is published with these rights.
Host::Session startSession(const std::string& user, bool everyFunction,
                           const std::string& functions);

// Writes the file of a session with this cookie value, which began just now.
void writeSession(const std::string& cookieValue, const std::string& user);

}  // namespace VeskLib::Test
