#include "tests/backend/support/PoolRunner.h"

#include <sys/socket.h>
#include <unistd.h>

#include <future>
#include <stdexcept>
#include <utility>

namespace VeskLib::Test {

namespace {

int listenSomewhere() {
    const sockaddr anywhere = {AF_UNIX, {}};
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    // With an address without a path, the kernel chooses an abstract name.
    if (::bind(listener, &anywhere, sizeof anywhere.sa_family) != 0 || ::listen(listener, 100)) {
        throw std::runtime_error("cannot listen");
    }
    return listener;
}

}  // namespace

PoolRunner::PoolRunner(Board::RequestHandler handler, const Board::ConnectionLimits& limits)
    : listener(listenSomewhere()),
      pool(std::make_unique<Board::ConnectionPool>(listener, std::move(handler), limits)) {
    std::promise<pid_t> number;
    thread = std::thread([this, &number] {
        number.set_value(::gettid());
        pool->run(stop.descriptor());
    });
    supervisorNumber = number.get_future().get();
}

PoolRunner::~PoolRunner() {
    stop.signal();
    thread.join();
    pool.reset();
    ::close(listener);
}

int PoolRunner::connect() const {
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connect(client);
    return client;
}

void PoolRunner::connect(int client) const {
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::getsockname(listener, generic, &size) != 0 || ::connect(client, generic, size) != 0) {
        throw std::runtime_error("cannot connect");
    }
}

}  // namespace VeskLib::Test
