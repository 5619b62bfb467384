// Runs the web server, and closes connections on which a request or a TLS handshake takes too long
// to arrive. The server itself only closes silent connections, so that a byte now and then would
// keep one open for hours.
//
// Usage: watch_requests COMMAND [WORD]...
//
// The command replaces this process. A child process watches it, and exits with it.

#include "platform/host/base/Descriptor.h"

#include <dirent.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using VeskLib::Host::Descriptor;
using Clock = std::chrono::steady_clock;

// A request must be complete this long after its first byte; 30 seconds with the periods below.
const std::chrono::seconds LONGEST_ARRIVAL(28);
const int PERIOD_MILLISECONDS = 1000;
const std::string SOCKET_LINK = "socket:";

// The state of a connection when it was last checked.
struct Traffic {
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    bool unanswered = false;  // bytes have arrived since the last ones were sent
    Clock::time_point since;  // when the first of them were seen
};

// By the names of the sockets, which the kernel does not reuse soon.
using Connections = std::map<std::string, Traffic>;

struct Process {
    pid_t number;
    int descriptor;
};

// Returns true if bytes of an overdue request still arrive. A complete request may be processed for
// any time, because nothing more arrives on its connection.
bool isOverdue(Traffic& traffic, const tcp_info& info, Clock::time_point now) {
    const bool answered = traffic.sent != info.tcpi_bytes_sent;
    const bool arriving = traffic.received != info.tcpi_bytes_received;
    traffic.sent = info.tcpi_bytes_sent;
    traffic.received = info.tcpi_bytes_received;
    if (answered) {
        traffic.unanswered = false;
    } else if (arriving && !traffic.unanswered) {
        traffic.unanswered = true;
        traffic.since = now;
    }
    return traffic.unanswered && arriving && now - traffic.since >= LONGEST_ARRIVAL;
}

// Returns the names of the process's open sockets, by descriptor.
std::map<int, std::string> socketsOf(pid_t process) {
    std::map<int, std::string> sockets;
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), ::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        char name[64];
        const ssize_t length =
            ::readlinkat(::dirfd(entries.get()), entry->d_name, name, sizeof name);
        if (length > 0 && std::string_view(name, length).starts_with(SOCKET_LINK)) {
            sockets[std::atoi(entry->d_name)] = std::string(name, length);
        }
    }
    return sockets;
}

// Returns a descriptor of this process for the same open socket.
Descriptor borrow(const Process& server, int descriptor) {
    return Descriptor(
        static_cast<int>(::syscall(SYS_pidfd_getfd, server.descriptor, descriptor, 0)));
}

void lookAtConnections(const Process& server, Connections& connections) {
    Connections seen;
    for (const auto& [number, name] : socketsOf(server.number)) {
        const Descriptor socket = borrow(server, number);
        tcp_info info = {};
        socklen_t size = sizeof info;
        if (!socket.isOpen() ||
            ::getsockopt(socket.get(), IPPROTO_TCP, TCP_INFO, &info, &size) != 0) {
            continue;
        }
        Traffic& traffic = seen[name] = connections[name];
        if (isOverdue(traffic, info, Clock::now())) {
            ::shutdown(socket.get(), SHUT_RDWR);
        }
    }
    connections.swap(seen);
}

// Runs in the child process. The parent grants it access before it becomes the server.
void watch(const Process& server) {
    Connections connections;
    pollfd end = {.fd = server.descriptor, .events = POLLIN, .revents = 0};
    while (::poll(&end, 1, PERIOD_MILLISECONDS) == 0 || errno == EINTR) {
        if (end.revents != 0) {
            break;
        }
        lookAtConnections(server, connections);
    }
}

// Returns true if the calls of watch() are permitted; some sandboxes forbid them.
bool isPossible(const Process& process) {
    return borrow(process, STDERR_FILENO).isOpen();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: watch_requests COMMAND [WORD]...\n";
        return 2;
    }
    const Process server = {::getpid(), static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0))};
    if (server.descriptor < 0 || !isPossible(server)) {
        std::cerr << "watch_requests: requests cannot be watched on this machine ("
                  << std::strerror(errno) << "): slow ones are not ended\n";
    } else {
        const pid_t watcher = ::fork();
        if (watcher == 0) {
            watch(server);
            ::_exit(0);
        }
        ::prctl(PR_SET_PTRACER, watcher);
    }
    ::execvp(argv[1], argv + 1);
    std::cerr << "watch_requests: " << argv[1] << ": " << std::strerror(errno) << "\n";
    return 1;
}
