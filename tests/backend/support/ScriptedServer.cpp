#include "tests/backend/support/ScriptedServer.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/channel/SocketAddress.h"
#include "tests/backend/support/requests.h"

#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace VeskLib::Test {

ScriptedServer::ScriptedServer(std::function<void(int client)> script)
    : listener(openBoardSocket(1)), thread([this, script = std::move(script)] {
          const int client = ::accept(listener, nullptr, nullptr);
          if (client >= 0) {
              script(client);
              ::close(client);
          }
      }) {
}

ScriptedServer::~ScriptedServer() {
    // Wakes the thread if it still waits for a client.
    ::shutdown(listener, SHUT_RDWR);
    thread.join();
    ::close(listener);
    ::unlink(getCGIPath(Host::BACKEND_SOCKET).c_str());
}

int openBoardSocket(int pendingClients) {
    const Host::SocketAddress address(getCGIPath(Host::BACKEND_SOCKET));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener, address.get(), Host::SocketAddress::size()) != 0 ||
        ::listen(listener, pendingClients) != 0) {
        throw std::runtime_error("cannot listen on the board's socket");
    }
    return listener;
}

namespace {

// Waits for an event on a socket. Fails the test if none occurs in time.
bool waitFor(int descriptor, short events) {
    pollfd waited = {descriptor, events, 0};
    const bool came = ::poll(&waited, 1, LONG) > 0;
    EXPECT_TRUE(came) << "the other side does nothing for " << LONG << " ms";
    return came;
}

int connectWith(int socketFlags) {
    const Host::SocketAddress address(getCGIPath(Host::BACKEND_SOCKET));
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | socketFlags, 0);
    if (::connect(client, address.get(), Host::SocketAddress::size()) != 0) {
        ::close(client);
        return -1;
    }
    return client;
}

}  // namespace

int connectToBoard() {
    return connectWith(0);
}

int connectToBoardWithoutWaiting() {
    return connectWith(SOCK_NONBLOCK);
}

void sendBytes(int descriptor, const Bytes& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            ::send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count < 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

Bytes receiveBytes(int descriptor, std::size_t size) {
    Bytes bytes(size);
    std::size_t received = 0;
    while (received < size && waitFor(descriptor, POLLIN)) {
        const ssize_t count = ::recv(descriptor, bytes.data() + received, size - received, 0);
        if (count <= 0) {
            break;
        }
        received += static_cast<std::size_t>(count);
    }
    bytes.resize(received);
    return bytes;
}

Bytes receiveFramed(int descriptor) {
    Bytes bytes = receiveBytes(descriptor, 4);
    if (bytes.size() == 4) {
        const std::size_t size = static_cast<std::size_t>(bytes[2]) << 8 | bytes[3];
        const Bytes body = receiveBytes(descriptor, size);
        bytes.insert(bytes.end(), body.begin(), body.end());
    }
    return bytes;
}

Bytes framed(const Bytes& bytes) {
    Bytes whole;
    for (int shift = 24; shift >= 0; shift -= 8) {
        whole.push_back(static_cast<unsigned char>(bytes.size() >> shift));
    }
    whole.insert(whole.end(), bytes.begin(), bytes.end());
    return whole;
}

void waitForEnd(int descriptor) {
    unsigned char byte = 0;
    while (waitFor(descriptor, POLLIN) && ::recv(descriptor, &byte, 1, 0) > 0) {
    }
}

void waitForHangUp(int descriptor) {
    waitFor(descriptor, POLLRDHUP);
}

}  // namespace VeskLib::Test
