#include "platform/host/channel/Channel.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/idleWork.h"
#include "platform/host/channel/FrameStream.h"
#include "platform/host/channel/SocketAddress.h"

#include <VeskLib/getCGIPath.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VeskLib::Host {

namespace {

// When the back-end's backlog is full, there is no event to wait for, so connect() is retried.
const int RETRY_MILLISECONDS = 10;

int codeOf(StreamResult result) {
    switch (result) {
        case StreamResult::DONE:
            return 0;
        case StreamResult::TIMEOUT:
            return CHANNEL_TIMEOUT;
        case StreamResult::OVERSIZED:
            return CHANNEL_MALFORMED;
        case StreamResult::CLOSED:
        case StreamResult::BROKEN:
            break;
    }
    return CHANNEL_BROKEN;
}

}  // namespace

Channel::~Channel() {
    disconnect();
}

int Channel::exchange(const RequestFrame& request, ReplyFrame& reply) {
    if (failure != 0) {
        return failure;
    }
    const std::vector<unsigned char> bytes = encode(request);
    if (bytes.size() > LARGEST_FRAME) {
        return CHANNEL_MALFORMED;
    }
    const Deadline deadline(deadlineMilliseconds);
    ReplyFrame received;
    failure = connectOnce(deadline);
    if (failure == 0) {
        failure = sendAndReceive(bytes, received, deadline);
    }
    if (failure != 0) {
        disconnect();
        return failure;
    }
    reply = std::move(received);
    return static_cast<int>(reply.errorCode);
}

void Channel::disconnect() {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

int Channel::connectOnce(const Deadline& deadline) {
    if (descriptor >= 0) {
        return 0;
    }
    const SocketAddress address(getCGIPath(BACKEND_SOCKET));
    descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (descriptor < 0 || !address.isValid()) {
        return CHANNEL_UNREACHABLE;
    }
    while (::connect(descriptor, address.get(), SocketAddress::size()) != 0) {
        if (errno != EAGAIN && errno != EINTR) {
            return CHANNEL_UNREACHABLE;
        }
        const int remaining = deadline.remainingMilliseconds();
        if (remaining == 0) {
            return CHANNEL_TIMEOUT;
        }
        ::poll(nullptr, 0, std::min(remaining, RETRY_MILLISECONDS));
    }
    return 0;
}

int Channel::sendAndReceive(const std::vector<unsigned char>& request, ReplyFrame& reply,
                            const Deadline& deadline) const {
    const int sent = codeOf(sendFrame(descriptor, request, deadline));
    if (sent != 0) {
        return sent;
    }
    doIdleWork();
    // Wait first, because the answer has almost never arrived yet.
    if (!waitUntilReady(descriptor, POLLIN, deadline)) {
        return CHANNEL_TIMEOUT;
    }
    std::vector<unsigned char> bytes;
    const int received = codeOf(receiveFrame(descriptor, bytes, deadline));
    if (received != 0) {
        return received;
    }
    return decode(bytes, reply) ? 0 : CHANNEL_MALFORMED;
}

}  // namespace VeskLib::Host
