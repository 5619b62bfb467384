#include "board/backend/Conversation.h"

#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/FrameStream.h"

#include <poll.h>

#include <algorithm>

namespace VeskLib::Board {

using Host::StreamResult;

Conversation::Conversation(int descriptor, const RequestHandler& handler,
                           const ConnectionLimits& limits)
    : descriptor(descriptor), handler(handler), limits(limits) {
}

bool Conversation::receive() {
    const StreamResult result =
        Host::receiveFrame(descriptor, received, Host::Deadline(limits.requestMilliseconds));
    whole = result == StreamResult::DONE;
    return whole || result == StreamResult::OVERSIZED;
}

bool Conversation::answer() {
    Host::RequestFrame request;
    const bool understood = whole && decode(received, request);
    const Answer answer = understood
                              ? handler(request, [this] { return isAwaited(); })
                              : Answer(Host::ReplyFrame{Host::BACKEND_MALFORMED_REQUEST, {}});
    if (answer.sentBytes) {
        sendTorn(answer);
        return false;
    }
    // After a malformed frame the connection must end, because the start of the next frame
    // is unknown.
    return Host::sendFrame(descriptor, encode(answer.reply),
                           Host::Deadline(limits.replyMilliseconds)) == StreamResult::DONE &&
           understood;
}

bool Conversation::isAwaited() const {
    pollfd client = {descriptor, 0, 0};  // POLLHUP and POLLERR are always reported
    return ::poll(&client, 1, 0) <= 0;
}

void Conversation::sendTorn(const Answer& answer) const {
    std::vector<unsigned char> framed = Host::withLength(encode(answer.reply));
    framed.resize(std::min(framed.size(), *answer.sentBytes));
    Host::sendBytes(descriptor, framed, Host::Deadline(limits.replyMilliseconds));
    if (framed.empty()) {
        Host::waitUntilReady(descriptor, POLLIN, Host::Deadline(limits.requestMilliseconds));
    }
}

}  // namespace VeskLib::Board
