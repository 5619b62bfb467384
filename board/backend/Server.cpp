#include "board/backend/Server.h"

#include "platform/host/channel/SocketAddress.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace VeskLib::Board {

namespace {

const int PENDING_CLIENTS = 128;

// Only the board's own user may connect.
const mode_t SOCKET_UMASK = 0177;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void removeStaleSocket(const std::string& path) {
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISSOCK(status.st_mode)) {
        throw std::runtime_error(path + " is in the way: it is not a socket");
    }
    ::unlink(path.c_str());
}

void bindAndListen(int listener, const std::string& path) {
    const Host::SocketAddress address(path);
    const mode_t original = ::umask(SOCKET_UMASK);
    const bool bound = ::bind(listener, address.get(), Host::SocketAddress::size()) == 0;
    ::umask(original);
    if (!bound || ::listen(listener, PENDING_CLIENTS) != 0) {
        const int reason = errno;
        ::close(listener);
        errno = reason;
        fail("cannot listen on " + path);
    }
}

int openListener(const std::string& path) {
    // SocketAddress also supports longer paths, but other tools that look for the socket do not.
    if (!Host::SocketAddress::fits(path)) {
        throw std::runtime_error("the socket path " + path + " is longer than " +
                                 std::to_string(sizeof sockaddr_un::sun_path - 1) + " bytes");
    }
    removeStaleSocket(path);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) {
        fail("cannot make a socket");
    }
    bindAndListen(listener, path);
    return listener;
}

}  // namespace

Server::Listener::Listener(std::string path)
    : path(std::move(path)), descriptor(openListener(this->path)) {
}

Server::Listener::~Listener() {
    ::close(descriptor);
    ::unlink(path.c_str());
}

Server::Server(std::string path, RequestHandler handler, const ConnectionLimits& limits)
    : listener(std::move(path)), pool(listener.descriptor, std::move(handler), limits) {
}

void Server::run(int stopDescriptor) {
    pool.run(stopDescriptor);
}

}  // namespace VeskLib::Board
