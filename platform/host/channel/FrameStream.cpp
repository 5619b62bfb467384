#include "platform/host/channel/FrameStream.h"

#include "data/WireCursor.h"
#include "platform/host/channel/Frame.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace VeskLib::Host {

namespace {

const std::size_t LENGTH_SIZE = 4;

bool mustWait() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

// Checked in each loop, because a descriptor may always be ready but never transfer a byte.
bool hasPassed(const Deadline& deadline) {
    return deadline.remainingMilliseconds() == 0;
}

// Receives exactly `size` bytes. Returns CLOSED if the connection ended before the first byte.
StreamResult receiveBytes(int descriptor, unsigned char* bytes, std::size_t size,
                          const Deadline& deadline) {
    std::size_t received = 0;
    while (received < size) {
        const ssize_t count = ::recv(descriptor, bytes + received, size - received, MSG_DONTWAIT);
        if (count > 0) {
            received += static_cast<std::size_t>(count);
        } else if (count == 0) {
            return received == 0 ? StreamResult::CLOSED : StreamResult::BROKEN;
        } else if (mustWait()) {
            if (hasPassed(deadline) || !waitUntilReady(descriptor, POLLIN, deadline)) {
                return StreamResult::TIMEOUT;
            }
        } else if (errno != EINTR) {
            return StreamResult::BROKEN;
        }
    }
    return StreamResult::DONE;
}

}  // namespace

Deadline::Deadline(int milliseconds)
    : end(std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds)) {
}

int Deadline::remainingMilliseconds() const {
    // Rounded up, so that a wait does not end just before the deadline and spin.
    const auto remaining =
        std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(remaining.count(), 0));
}

bool waitUntilReady(int descriptor, short events, const Deadline& deadline) {
    pollfd waited = {descriptor, events, 0};
    while (true) {
        const int ready = ::poll(&waited, 1, deadline.remainingMilliseconds());
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR || hasPassed(deadline)) {
            return false;
        }
    }
}

std::vector<unsigned char> withLength(const std::vector<unsigned char>& bytes) {
    std::vector<unsigned char> framed(LENGTH_SIZE + bytes.size());
    VeskUi::WireWriter writer(framed.data(), framed.size());
    writer.writeU32(static_cast<std::uint32_t>(bytes.size()));
    writer.writeBytes(bytes.data(), bytes.size());
    return framed;
}

StreamResult sendBytes(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(descriptor, bytes.data() + sent, bytes.size() - sent,
                                     MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (mustWait()) {
            if (hasPassed(deadline) || !waitUntilReady(descriptor, POLLOUT, deadline)) {
                return StreamResult::TIMEOUT;
            }
        } else if (errno != EINTR) {
            return StreamResult::BROKEN;
        }
    }
    return StreamResult::DONE;
}

StreamResult sendFrame(int descriptor, const std::vector<unsigned char>& bytes,
                       const Deadline& deadline) {
    return bytes.size() > LARGEST_FRAME ? StreamResult::OVERSIZED
                                        : sendBytes(descriptor, withLength(bytes), deadline);
}

StreamResult receiveFrame(int descriptor, std::vector<unsigned char>& bytes,
                          const Deadline& deadline) {
    unsigned char length[LENGTH_SIZE] = {};
    const StreamResult head = receiveBytes(descriptor, length, sizeof length, deadline);
    if (head != StreamResult::DONE) {
        return head;
    }
    const std::uint32_t size = VeskUi::WireReader(length, sizeof length).readU32();
    if (size > LARGEST_FRAME) {
        return StreamResult::OVERSIZED;
    }
    std::vector<unsigned char> body(size);
    const StreamResult result = receiveBytes(descriptor, body.data(), body.size(), deadline);
    if (result != StreamResult::DONE) {
        return result == StreamResult::CLOSED ? StreamResult::BROKEN : result;
    }
    bytes.swap(body);
    return StreamResult::DONE;
}

}  // namespace VeskLib::Host
