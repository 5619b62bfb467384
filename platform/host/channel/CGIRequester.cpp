#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/PException.h>

#include "platform/host/base/SessionShape.h"
#include "platform/host/base/requestOrigin.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/channel/changes.h"
#include "platform/host/channel/refusalPayload.h"
#include "platform/host/channel/takeAnswer.h"

#include <utility>
#include <vector>

namespace VeskLib::Gui {

namespace {

// Stores the details of a refusal; empty details if the payload is malformed.
void noteAnswer(int code, const std::vector<unsigned char>& payload) {
    Host::RefusalDetails details;
    decode(payload, details);
    Host::noteRefusal(code, details);
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
        state->errorCode = Host::takeAnswer(std::move(reply.payload), answer);
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
    noteAnswer(state->errorCode, reply.payload);
    return state->errorCode == 0;
}

int CGIRequester::getErrorCode() const {
    return state->errorCode;
}

std::string CGIRequester::getSessionId() const {
    return state->sessionIdentifier;
}

}  // namespace VeskLib::Gui
