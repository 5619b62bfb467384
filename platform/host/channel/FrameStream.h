#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace VeskLib::Host {

// A point in time by which an operation must be complete.
class Deadline {
public:
    // The deadline is `milliseconds` from now.
    explicit Deadline(int milliseconds);

    // Returns 0 if the deadline has passed.
    int remainingMilliseconds() const;

private:
    std::chrono::steady_clock::time_point end;
};

enum class StreamResult {
    DONE,
    TIMEOUT,    // not complete within the deadline
    CLOSED,     // the connection ended before the first byte of a frame
    BROKEN,     // the connection ended within a frame, or failed
    OVERSIZED,  // the frame is larger than LARGEST_FRAME
};

// Waits until `descriptor` is ready for one of `events` (of poll()) or has failed. Returns false if
// the deadline passes first.
bool waitUntilReady(int descriptor, short events, const Deadline& deadline);

// Returns a frame's bytes preceded by their length, as they are sent.
std::vector<unsigned char> withLength(const std::vector<unsigned char>& bytes);

// Sends the bytes unchanged. Never raises SIGPIPE.
StreamResult sendBytes(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline);

// Sends a frame's length and bytes, with one system call if the socket accepts them. Never raises
// SIGPIPE.
StreamResult sendFrame(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline);

// Receives a complete frame and sets `bytes` to it, without the length. `bytes` is unchanged unless
// the result is DONE.
StreamResult receiveFrame(int descriptor, std::vector<unsigned char>& bytes,
                          const Deadline& deadline);

}  // namespace VeskLib::Host
