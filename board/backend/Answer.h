#pragma once

#include "platform/host/channel/Frame.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

namespace VeskLib::Board {

// What a client gets: a reply, and how much of it when it is to go wrong.
struct Answer {
    Answer(Host::ReplyFrame reply) : reply(std::move(reply)) {}  // NOLINT: a reply is an answer

    Host::ReplyFrame reply;
    // When set, so many bytes of the frame leave, and then the connection ends. Nothing at all
    // leaves for 0, and the connection stays until the client ends it.
    std::optional<std::size_t> sentBytes;
};

// Returns whether the client of a request is still there to take the answer.
using IsAwaited = std::function<bool()>;

// Called by several threads at once.
using RequestHandler = std::function<Answer(const Host::RequestFrame&, const IsAwaited&)>;

}  // namespace VeskLib::Board
