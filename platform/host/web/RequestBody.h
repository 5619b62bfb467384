#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace VeskLib::Host {

// The request's body on standard input, read piece by piece.
class RequestBody {
public:
    // Takes the announced length from CONTENT_LENGTH; without one the body ends with the input.
    // Throws PException (REQUEST_MALFORMED) when the length is no number.
    RequestBody();

    // None when no length was announced.
    std::optional<std::size_t> announcedLength() const { return announced; }

    // The next piece, at most 16 KiB, valid until the next call; empty at the end of the body.
    // Throws PException (REQUEST_MALFORMED) when the input ends before the announced length.
    std::string_view next();

private:
    std::optional<std::size_t> announced;
    std::size_t taken = 0;
    char buffer[16 * 1024];
};

}  // namespace VeskLib::Host
