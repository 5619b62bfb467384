#include <VeskLib/Gui/CGIRequester.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

#include <vector>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

struct CGIRequester::State {
    // Returns the script's reply, and stores its error code as a real channel does.
    const Reply& ask(unsigned int request) {
        static const Reply NO_REPLY{NOT_SCRIPTED, nullptr};
        const auto found = script().replies.find(request);
        const Reply& reply = found == script().replies.end() ? NO_REPLY : found->second;
        errorCode = reply.errorCode;
        return reply;
    }

    int errorCode = 0;
};

CGIRequester::CGIRequester(const char* sessionText) : state(std::make_unique<State>()) {
    objectMade(this, describe("CGIRequester", sessionText));
}

CGIRequester::~CGIRequester() {
    objectDeleted(this);
}

bool CGIRequester::getInfo(unsigned int request, VeskUi::SerializableObject& answer) {
    record("getInfo " + toHexadecimal(request));
    const Reply& reply = state->ask(request);
    if (reply.errorCode != 0) {
        return false;
    }
    if (reply.fill) {
        reply.fill(answer);
    }
    return true;
}

bool CGIRequester::setInfo(unsigned int request, const VeskUi::SerializableObject& data) {
    std::vector<unsigned char> bytes(data.getSerializedSize());
    data.getSerialized(bytes.data(), static_cast<unsigned int>(bytes.size()));
    record("setInfo " + toHexadecimal(request) + " [" + toHexadecimal(bytes) + "]");
    return state->ask(request).errorCode == 0;
}

int CGIRequester::getErrorCode() const {
    record("getErrorCode");
    return state->errorCode;
}

std::string CGIRequester::getSessionId() const {
    record("getSessionId");
    return script().sessionId;
}

}  // namespace VeskLib::Gui
