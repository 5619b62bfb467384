#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

namespace VeskLib::Host {

// The address of a Unix-domain socket. A path that is too long for one (108 bytes) is reached
// through its opened folder, so that the depth of the board's root does not matter.
class SocketAddress {
public:
    explicit SocketAddress(const std::string& path);
    SocketAddress(const SocketAddress&) = delete;
    SocketAddress& operator=(const SocketAddress&) = delete;
    ~SocketAddress();

    // Whether `path` itself fits into an address.
    static bool fits(const std::string& path);

    // False when the path's folder cannot be opened, or its last name is too long by itself.
    bool isValid() const { return valid; }

    // Stays valid while the object lives.
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
    static socklen_t size() { return sizeof(sockaddr_un); }

private:
    sockaddr_un address;
    int folder = -1;
    bool valid = false;
};

}  // namespace VeskLib::Host
