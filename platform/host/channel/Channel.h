#pragma once

#include "platform/host/channel/Frame.h"

namespace VeskLib::Host {

class Deadline;

// Error codes of the channel itself. All others come from the back-end.
inline constexpr int CHANNEL_UNREACHABLE = 2001;   // the back-end does not listen
inline constexpr int CHANNEL_TIMEOUT = 2002;       // no complete reply in time
inline constexpr int CHANNEL_BROKEN = 2003;        // the connection ended within a frame
inline constexpr int CHANNEL_MALFORMED = 2004;     // an oversized frame, or not a reply
inline constexpr int CHANNEL_BAD_OBJECT = 2005;    // the object rejects the reply's bytes
inline constexpr int CHANNEL_NO_AUTHORITY = 2006;  // the user may not use the function

// The time limit for one exchange; shorter than the web server's limit for a CGI program.
inline constexpr int CHANNEL_DEADLINE_MILLISECONDS = 10000;

// A connection to the back-end. Connects on the first exchange. After a failure of the channel,
// every further exchange fails with the same code.
class Channel {
public:
    explicit Channel(int deadlineMilliseconds = CHANNEL_DEADLINE_MILLISECONDS)
        : deadlineMilliseconds(deadlineMilliseconds) {}
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel();

    // Sends `request` and waits for the reply. Sets `reply` and returns 0 or the back-end's error
    // code; or returns an error code of the channel and leaves `reply` unchanged.
    //
    // Does not send a request larger than LARGEST_FRAME, but returns CHANNEL_MALFORMED; the channel
    // remains usable. Any other failure closes the connection immediately, so that the back-end
    // knows that the client is no longer waiting.
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
