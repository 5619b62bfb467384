#pragma once

#include <string_view>

namespace VeskLib::Host {

// Sends a line of the audit log to the system log as well, when the board description names its
// socket ("syslog_socket"): one datagram with facility authpriv and severity notice. Never blocks;
// a datagram that the socket does not take is lost.
void sendToSystemLog(std::string_view line) noexcept;

}  // namespace VeskLib::Host
