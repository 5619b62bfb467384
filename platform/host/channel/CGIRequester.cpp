#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/PException.h>

#include "platform/host/base/SessionShape.h"
#include "platform/host/base/requestOrigin.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/RefusalDetails.h"
#include "platform/host/channel/changes.h"

#include <utility>
#include <vector>

namespace VeskLib::Gui {

namespace {

// Behind every answer, for objects that take a fixed number of bytes whatever they are given.
const std::size_t PADDING = 4;

int takeAnswer(std::vector<unsigned char> payload, VeskUi::SerializableObject& answer) {
    const auto size = static_cast<unsigned int>(payload.size());
    payload.resize(payload.size() + PADDING, 0);
    try {
        return answer.setSerialized(payload.data(), size) ? 0 : Host::CHANNEL_BAD_OBJECT;
    } catch (const PException&) {
        return Host::CHANNEL_BAD_OBJECT;
    }
}

bool giveData(const VeskUi::SerializableObject& data, std::vector<unsigned char>& payload) {
    payload.resize(data.getSerializedSize());
    try {
        data.getSerialized(payload.data(), static_cast<unsigned int>(payload.size()));
    } catch (const PException&) {
        return false;
    }
    return true;
}

}  // namespace

struct CGIRequester::State {
    Host::Channel channel;
    std::string sessionIdentifier;
    int errorCode = 0;
};

CGIRequester::CGIRequester(const char* sessionText) : state(std::make_unique<State>()) {
    state->sessionIdentifier = Host::identifierOf(sessionText == nullptr ? "" : sessionText);
}

CGIRequester::~CGIRequester() = default;

bool CGIRequester::getInfo(unsigned int request, VeskUi::SerializableObject& answer) {
    Host::ReplyFrame reply;
    state->errorCode = state->channel.exchange(
        {Host::RequestKind::GET, request, state->sessionIdentifier, {}}, reply);
    if (state->errorCode == 0) {
        state->errorCode = takeAnswer(std::move(reply.payload), answer);
    }
    return state->errorCode == 0;
}

bool CGIRequester::setInfo(unsigned int request, const VeskUi::SerializableObject& data) {
    if (Host::areChangesForbidden()) {
        state->errorCode = Host::CHANNEL_NO_AUTHORITY;
        return false;
    }
    Host::RequestFrame frame = {.kind = Host::RequestKind::SET,
                                .number = request,
                                .sessionIdentifier = state->sessionIdentifier,
                                .payload = {},
                                .address = Host::clientAddress(),
                                .requestIdentifier = Host::requestIdentifier(),
                                .stagedFile = Host::postedFile()};
    if (!giveData(data, frame.payload)) {
        state->errorCode = Host::CHANNEL_BAD_OBJECT;
        return false;
    }
    Host::ReplyFrame reply;
    state->errorCode = state->channel.exchange(frame, reply);
    Host::noteRefusal(state->errorCode, reply.payload);
    return state->errorCode == 0;
}

int CGIRequester::getErrorCode() const {
    return state->errorCode;
}

std::string CGIRequester::getSessionId() const {
    return state->sessionIdentifier;
}

}  // namespace VeskLib::Gui
