#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

namespace VeskLib::Host {

// The address of a Unix-domain socket. If the path is too long for an address (108 bytes), opens
// its folder and uses a short path through it, so that the path of the board's root may be long.
class SocketAddress {
public:
    explicit SocketAddress(const std::string& path);
    SocketAddress(const SocketAddress&) = delete;
    SocketAddress& operator=(const SocketAddress&) = delete;
    ~SocketAddress();

    // Returns true if `path` itself fits into an address.
    static bool fits(const std::string& path);

    // Returns false if the path's folder cannot be opened or the file name alone is too long.
    bool isValid() const { return valid; }

    // The result is valid as long as this object exists.
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
    static socklen_t size() { return sizeof(sockaddr_un); }

private:
    sockaddr_un address;
    int folder = -1;
    bool valid = false;
};

}  // namespace VeskLib::Host
