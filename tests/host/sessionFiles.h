#pragma once

#include "platform/host/session/Session.h"

#include <ctime>
#include <string>

namespace VeskLib::Test {

// Return the paths of a session's files.
std::string sessionFile(const std::string& identifier);
std::string backupFile(const std::string& identifier);
std::string stagingFile(const std::string& identifier);

// Sets a file's times to `seconds` ago. Does not follow a symbolic link.
void setAge(const std::string& path, std::time_t seconds);

// Replaces the value of `field` in a session's file.
void setField(const Host::Session& session, const std::string& field, const std::string& value);

// Returns true if a request with this cookie value is let in.
bool isLetIn(const std::string& cookieValue);

}  // namespace VeskLib::Test
