#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// Sends a line of the audit log to the system log as well, unless `socketPath` (the board
// description's "syslog_socket") is empty: one datagram with facility authpriv and severity notice.
// Never blocks; a datagram that the socket does not take is lost.
void sendToSystemLog(const std::string& socketPath, std::string_view line) noexcept;

}  // namespace VeskLib::Host
