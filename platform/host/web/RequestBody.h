#pragma once

#include "platform/host/channel/FrameStream.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace VeskLib::Host {

// The request's body on standard input, read piece by piece.
class RequestBody {
public:
    // The whole body must arrive within this time, so that a client that sends a byte now and then
    // cannot occupy the process.
    static constexpr int DEADLINE_MILLISECONDS = 25000;

    // Reads the announced length from CONTENT_LENGTH. Without one, the body ends with the input.
    // Throws PException (REQUEST_MALFORMED) if the length is not a number.
    explicit RequestBody(int milliseconds = DEADLINE_MILLISECONDS);

    // Returns the announced length, or nullopt if there is none.
    std::optional<std::size_t> announcedLength() const { return announced; }

    // Returns the next piece, at most 16 KiB, valid until the next call; empty at the end of the
    // body. Throws PException: REQUEST_MALFORMED if the input ends before the announced length,
    // REQUEST_TOO_SLOW when the time is up.
    std::string_view next();

private:
    const Deadline deadline;
    std::optional<std::size_t> announced;
    std::size_t taken = 0;
    char buffer[16 * 1024];
};

}  // namespace VeskLib::Host
