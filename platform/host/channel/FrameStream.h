#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace VeskLib::Host {

// A moment by which something must be done.
class Deadline {
public:
    explicit Deadline(int milliseconds);

    // 0 when the moment has passed.
    int remainingMilliseconds() const;

private:
    std::chrono::steady_clock::time_point end;
};

enum class StreamResult {
    DONE,
    TIMEOUT,    // not whole within the deadline
    CLOSED,     // the connection ended where a frame would begin
    BROKEN,     // the connection ended within a frame, or failed
    OVERSIZED,  // a frame above LARGEST_FRAME
};

// Waits until `descriptor` is ready for one of `events` (of poll()) or has failed. False when the
// deadline passes first.
bool waitUntilReady(int descriptor, short events, const Deadline& deadline);

// A frame's bytes with their length in front, as they travel.
std::vector<unsigned char> withLength(const std::vector<unsigned char>& bytes);

// Sends bytes as they are. Never raises SIGPIPE.
StreamResult sendBytes(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline);

// Sends a frame's bytes with their length in front, in one piece where the socket takes it. Never
// raises SIGPIPE.
StreamResult sendFrame(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline);

// Receives a whole frame without the length in front. `bytes` is unchanged unless DONE.
StreamResult receiveFrame(int descriptor, std::vector<unsigned char>& bytes,
                          const Deadline& deadline);

}  // namespace VeskLib::Host
