#include "platform/host/channel/takeAnswer.h"

#include "platform/host/channel/Channel.h"

#include <VeskLib/PException.h>

namespace VeskLib::Host {

namespace {

// Zero bytes appended to every answer, for objects that read a fixed number of bytes whatever its
// size.
const std::size_t PADDING = 4;

}  // namespace

int takeAnswer(std::vector<unsigned char> payload, VeskUi::SerializableObject& answer) {
    const auto size = static_cast<unsigned int>(payload.size());
    payload.resize(payload.size() + PADDING, 0);
    try {
        return answer.setSerialized(payload.data(), size) ? 0 : CHANNEL_BAD_OBJECT;
    } catch (const PException&) {
        return CHANNEL_BAD_OBJECT;
    }
}

}  // namespace VeskLib::Host
