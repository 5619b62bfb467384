#pragma once

#include "platform/host/channel/Frame.h"
#include "tests/support/ChildProcess.h"

#include <memory>
#include <optional>
#include <vector>

namespace VeskLib::Test {

// A back-end that listens on the socket of the board's back-end and accepts one connection.
class FakeBackend {
public:
    // Answers the first request with `reply`; without one, closes the connection unanswered.
    explicit FakeBackend(const std::optional<Host::ReplyFrame>& reply);
    // Answers one request per reply, in order, then closes the connection.
    explicit FakeBackend(const std::vector<Host::ReplyFrame>& replies);
    FakeBackend(const FakeBackend&) = delete;
    FakeBackend& operator=(const FakeBackend&) = delete;
    ~FakeBackend();

    // Stops listening. Returns the first request received, or nothing if there was none.
    std::optional<Host::RequestFrame> takeRequest();

private:
    int listener;
    std::unique_ptr<ChildProcess> process;
};

}  // namespace VeskLib::Test
