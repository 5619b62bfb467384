#include "board/web/askUserRights.h"

#include "platform/host/channel/Channel.h"

#include <cstdint>
#include <vector>

namespace VeskLib::Board {

namespace {

using Bytes = std::vector<unsigned char>;

const std::size_t LENGTH_SIZE = 2;
const std::size_t LONGEST_TEXT = 0xFFFF;

void appendText(Bytes& bytes, const std::string& text) {
    bytes.push_back(static_cast<unsigned char>(text.size() >> 8));
    bytes.push_back(static_cast<unsigned char>(text.size()));
    bytes.insert(bytes.end(), text.begin(), text.end());
}

// One byte that is 1 for every function, then the length and the text of the function numbers.
bool readRights(const Bytes& reply, UserRights& rights) {
    const std::size_t textStart = 1 + LENGTH_SIZE;
    if (reply.size() < textStart) {
        return false;
    }
    const std::size_t length = static_cast<std::size_t>(reply[1]) << 8 | reply[2];
    if (reply.size() != textStart + length) {
        return false;
    }
    rights.everyFunction = reply[0] != 0;
    rights.functions.assign(reply.begin() + textStart, reply.end());
    return true;
}

}  // namespace

int askUserRights(const std::string& user, const std::string& password, UserRights& rights) {
    if (user.size() > LONGEST_TEXT || password.size() > LONGEST_TEXT) {
        return LOGIN_NOT_ACCEPTED;
    }
    Host::RequestFrame request;
    request.kind = Host::RequestKind::LOGIN;
    appendText(request.payload, user);
    appendText(request.payload, password);

    Host::Channel channel;
    Host::ReplyFrame reply;
    const int code = channel.exchange(request, reply);
    if (code != 0) {
        return code;
    }
    return readRights(reply.payload, rights) ? 0 : Host::CHANNEL_BAD_OBJECT;
}

}  // namespace VeskLib::Board
