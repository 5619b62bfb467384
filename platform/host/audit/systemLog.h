#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Also sends a line of the audit log to the system log, as one datagram with facility authpriv and
// severity notice, unless `socketPath` (the board description's "syslog_socket") is empty. Never
// blocks; a datagram that the socket does not accept is lost.
void sendToSystemLog(const std::string& socketPath, std::string_view line) noexcept;

}  // namespace VeskLib::Host
