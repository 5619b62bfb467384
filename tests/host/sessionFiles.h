#pragma once

#include "platform/host/session/Session.h"

#include <ctime>
#include <string>

namespace VeskLib::Test {

// The files that a session has.
std::string sessionFile(const std::string& identifier);
std::string backupFile(const std::string& identifier);
std::string stagingFile(const std::string& identifier);

// Sets a file's time to `seconds` ago; a link's own time when it is one.
void setAge(const std::string& path, std::time_t seconds);

// Replaces what a session's file says of `field`.
void setField(const Host::Session& session, const std::string& field, const std::string& value);

// Whether a request with this cookie value is let in.
bool isLetIn(const std::string& cookieValue);

}  // namespace VeskLib::Test
