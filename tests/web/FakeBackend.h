#pragma once

#include "platform/host/channel/Frame.h"
#include "tests/support/ChildProcess.h"

#include <memory>
#include <optional>
#include <vector>

namespace VeskLib::Test {

// A back-end that listens where the board's back-end does, and takes one connection.
class FakeBackend {
public:
    // Answers with `reply`; hangs up without an answer when there is none.
    explicit FakeBackend(const std::optional<Host::ReplyFrame>& reply);
    // Answers as many requests, and hangs up.
    explicit FakeBackend(const std::vector<Host::ReplyFrame>& replies);
    FakeBackend(const FakeBackend&) = delete;
    FakeBackend& operator=(const FakeBackend&) = delete;
    ~FakeBackend();

    // Stops listening and gives the first request that was made; nothing when none was.
    std::optional<Host::RequestFrame> takeRequest();

private:
    int listener;
    std::unique_ptr<ChildProcess> process;
};

}  // namespace VeskLib::Test
