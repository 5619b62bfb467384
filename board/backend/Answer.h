#pragma once

#include "platform/host/channel/Frame.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

namespace VeskLib::Board {

// A reply to a client. If a fault switch asks for it, only a part is sent.
struct Answer {
    Answer(Host::ReplyFrame reply) : reply(std::move(reply)) {}  // NOLINT: a reply is an answer

    Host::ReplyFrame reply;
    // If set, only this many bytes of the frame are sent, and the connection is closed. For 0, the
    // connection stays open until the client closes it.
    std::optional<std::size_t> sentBytes;
};

// Returns true if a request's client is still connected.
using IsAwaited = std::function<bool()>;

// Called by several threads at once.
using RequestHandler = std::function<Answer(const Host::RequestFrame&, const IsAwaited&)>;

}  // namespace VeskLib::Board
