#pragma once

#include "platform/host/channel/Frame.h"

namespace VeskLib::Host {

class Deadline;

// Error codes of the channel itself; all others are the back-end's.
inline constexpr int CHANNEL_UNREACHABLE = 2001;   // the back-end does not listen
inline constexpr int CHANNEL_TIMEOUT = 2002;       // no whole reply within the deadline
inline constexpr int CHANNEL_BROKEN = 2003;        // the connection ended within a frame
inline constexpr int CHANNEL_MALFORMED = 2004;     // an oversized frame, or not a reply
inline constexpr int CHANNEL_BAD_OBJECT = 2005;    // the object does not take the reply's bytes
inline constexpr int CHANNEL_NO_AUTHORITY = 2006;  // the user may not use the function

// For one exchange; shorter than the web server's limit for a CGI program.
inline constexpr int CHANNEL_DEADLINE_MILLISECONDS = 10000;

// A connection to the back-end. It connects with the first exchange; after a failure of the
// channel every further exchange fails with the same code.
class Channel {
public:
    explicit Channel(int deadlineMilliseconds = CHANNEL_DEADLINE_MILLISECONDS)
        : deadlineMilliseconds(deadlineMilliseconds) {}
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel();

    // Sends `request` and waits for the reply. Returns 0 or the back-end's code with `reply`
    // filled, or the channel's code with `reply` unchanged. A request above LARGEST_FRAME is not
    // sent (CHANNEL_MALFORMED) and leaves the channel usable. Any other failure closes the
    // connection at once, so that the back-end knows that nobody waits.
    int exchange(const RequestFrame& request, ReplyFrame& reply);

private:
    int connectOnce(const Deadline& deadline);
    void disconnect();
    int sendAndReceive(const std::vector<unsigned char>& request, ReplyFrame& reply,
                       const Deadline& deadline) const;

    int deadlineMilliseconds;
    int descriptor = -1;
    int failure = 0;
};

}  // namespace VeskLib::Host
