#include "tests/web/FakeBackend.h"

#include "platform/host/channel/FrameStream.h"
#include "platform/host/channel/SocketAddress.h"
#include "tests/support/BoardTest.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

#include <iostream>
#include <vector>

namespace VeskLib::Test {

namespace {

using Bytes = std::vector<unsigned char>;

const int DEADLINE_MILLISECONDS = 60000;

int listenAt(const std::string& path) {
    ::unlink(path.c_str());  // left by an earlier back-end
    const Host::SocketAddress address(path);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(::bind(listener, address.get(), Host::SocketAddress::size()), 0) << path;
    EXPECT_EQ(::listen(listener, 1), 0);
    return listener;
}

// Prints the first request. Returns the exit status: 0 also if the listener is shut down before
// anyone connects.
int answer(int listener, const std::vector<Host::ReplyFrame>& replies) {
    const int connection = ::accept(listener, nullptr, nullptr);
    if (connection < 0) {
        return 0;
    }
    const Host::Deadline deadline(DEADLINE_MILLISECONDS);
    Bytes request;
    if (Host::receiveFrame(connection, request, deadline) != Host::StreamResult::DONE) {
        return 1;
    }
    for (std::size_t i = 0; i < replies.size(); ++i) {
        Bytes further;
        if (i > 0 &&
            Host::receiveFrame(connection, further, deadline) != Host::StreamResult::DONE) {
            break;
        }
        Host::sendFrame(connection, Host::encode(replies[i]), deadline);
    }
    std::cout.write(reinterpret_cast<const char*>(request.data()),
                    static_cast<std::streamsize>(request.size()));
    ::close(connection);
    return 0;
}

}  // namespace

FakeBackend::FakeBackend(const std::optional<Host::ReplyFrame>& reply)
    : FakeBackend(reply ? std::vector{*reply} : std::vector<Host::ReplyFrame>()) {
}

FakeBackend::FakeBackend(const std::vector<Host::ReplyFrame>& replies)
    : listener(listenAt(boardFile("/var/run/backend.sock"))),
      process(
          std::make_unique<ChildProcess>([this, replies] { return answer(listener, replies); })) {
}

FakeBackend::~FakeBackend() {
    ::close(listener);
}

std::optional<Host::RequestFrame> FakeBackend::takeRequest() {
    ::shutdown(listener, SHUT_RDWR);
    const ChildResult result = process->wait();
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    Host::RequestFrame request;
    if (!Host::decode(Bytes(result.output.begin(), result.output.end()), request)) {
        EXPECT_EQ(result.output, "");
        return std::nullopt;
    }
    return request;
}

}  // namespace VeskLib::Test
