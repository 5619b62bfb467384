#include "platform/host/channel/SocketAddress.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

namespace VeskLib::Host {

SocketAddress::SocketAddress(const std::string& path) : address{AF_UNIX, {}} {
    std::string reachable = path;
    const std::size_t slash = path.rfind('/');
    if (!fits(path) && slash != std::string::npos) {
        folder = ::open(path.substr(0, slash + 1).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) {
            return;
        }
        reachable = "/proc/self/fd/" + std::to_string(folder) + path.substr(slash);
    }
    valid = fits(reachable);
    if (valid) {
        std::memcpy(address.sun_path, reachable.data(), reachable.size());
    }
}

SocketAddress::~SocketAddress() {
    if (folder >= 0) {
        ::close(folder);
    }
}

bool SocketAddress::fits(const std::string& path) {
    return path.size() < sizeof sockaddr_un::sun_path;
}

}  // namespace VeskLib::Host
