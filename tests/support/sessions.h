#pragma once

#include "platform/host/session/Session.h"

#include <string>

namespace VeskLib::Test {

// Adds a user with these rights to the published properties of the board.
void publishUser(const std::string& name, bool everyFunction, const std::string& functions);

// Publishes a user with these rights and starts a session for them.
Host::Session startSession(const std::string& user, bool everyFunction,
                           const std::string& functions);

// Writes the file of a session that has this cookie value and was created just now.
void writeSession(const std::string& cookieValue, const std::string& user);

}  // namespace VeskLib::Test
