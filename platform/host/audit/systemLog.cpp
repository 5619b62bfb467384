#include "platform/host/audit/systemLog.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/channel/SocketAddress.h"

#include <sys/socket.h>

#include <string>

namespace VeskLib::Host {

namespace {

const char* const HEADER = "<85>efi_audit: ";  // 10 (authpriv) * 8 + 5 (notice)

void send(const std::string& socketPath, std::string_view line) {
    const SocketAddress address(socketPath);
    const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (socket.isOpen() && address.isValid()) {
        const std::string message = HEADER + std::string(line.substr(0, line.find('\n')));
        static_cast<void>(!::sendto(socket.get(), message.data(), message.size(), MSG_NOSIGNAL,
                                    address.get(), SocketAddress::size()));
    }
}

}  // namespace

void sendToSystemLog(const std::string& socketPath, std::string_view line) noexcept {
    try {
        if (!socketPath.empty()) {
            send(socketPath, line);
        }
    } catch (...) {
        // Ignored: the line is already in the audit log.
    }
}

}  // namespace VeskLib::Host
