// The bytes received over a connection of the back-end channel, by either end. An input is
// everything that the peer sends before it closes the connection.

#include "platform/host/channel/Frame.h"
#include "platform/host/channel/FrameStream.h"
#include "platform/host/channel/refusalPayload.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <sys/socket.h>
#include <unistd.h>

#include <span>

using namespace VeskLib;
using Bytes = std::vector<unsigned char>;

namespace {

// Fits into a socket's buffer, so that sending does not block.
const std::size_t LARGEST_INPUT = 100000;
const std::size_t LENGTH_SIZE = 4;
const int NO_DEADLINE = 60000;

// Returns a connection whose peer has sent `bytes` and closed its end.
int openConnection(const Bytes& bytes) {
    int ends[2] = {};
    Fuzz::require(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "a connection can be made");
    Fuzz::require(::send(ends[0], bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
                      static_cast<ssize_t>(bytes.size()),
                  "the input fits into the socket's buffer");
    ::close(ends[0]);
    return ends[1];
}

template <typename Frame>
void checkFrame(const Bytes& bytes) {
    Frame frame;
    if (decode(bytes, frame)) {
        Fuzz::require(encode(frame) == bytes, "an accepted frame is written unchanged");
    } else {
        Fuzz::require(frame.payload.empty(), "a rejected frame changes nothing");
    }
}

// Checks the details in a refusal's payload.
void checkDetails(const Bytes& bytes) {
    Host::ReplyFrame reply;
    Host::RefusalDetails details;
    if (decode(bytes, reply) && decode(reply.payload, details)) {
        Fuzz::require(encode(details) == reply.payload, "details are written unchanged");
    } else {
        Fuzz::require(details.partitions.empty(), "rejected details change nothing");
    }
}

// Returns the expected result of receiving from `rest`. If it is DONE, removes the frame from
// `rest` and sets `frame`.
Host::StreamResult takeFrame(std::span<const unsigned char>& rest, Bytes& frame) {
    if (rest.size() < LENGTH_SIZE) {
        return rest.empty() ? Host::StreamResult::CLOSED : Host::StreamResult::BROKEN;
    }
    const std::uint64_t size = std::uint64_t{rest[0]} << 24 | std::uint64_t{rest[1]} << 16 |
                               std::uint64_t{rest[2]} << 8 | rest[3];
    if (size > Host::LARGEST_FRAME) {
        return Host::StreamResult::OVERSIZED;
    }
    rest = rest.subspan(LENGTH_SIZE);
    if (size > rest.size()) {
        return Host::StreamResult::BROKEN;
    }
    frame.assign(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
    rest = rest.subspan(size);
    return Host::StreamResult::DONE;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > LARGEST_INPUT) {
        return 0;
    }
    const Bytes input = Fuzz::bytesOf(data, size);
    std::span<const unsigned char> rest = input;
    const int connection = openConnection(input);
    Host::StreamResult result = Host::StreamResult::DONE;
    while (result == Host::StreamResult::DONE) {
        Bytes expected;
        Bytes received;
        result = Host::receiveFrame(connection, received, Host::Deadline(NO_DEADLINE));
        Fuzz::require(result == takeFrame(rest, expected),
                      "the result of receiving is as expected");
        Fuzz::require(received == expected, "a received frame is the one that was sent");
        if (result == Host::StreamResult::DONE) {
            checkFrame<Host::RequestFrame>(received);
            checkFrame<Host::ReplyFrame>(received);
            checkDetails(received);
            Fuzz::require(Host::withLength(received).size() == LENGTH_SIZE + received.size(),
                          "withLength() prepends the length");
        }
    }
    ::close(connection);
    return 0;
}
