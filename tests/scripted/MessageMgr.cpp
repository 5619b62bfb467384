#include <VeskLib/Gui/MessageMgr.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

MessageMgr::MessageMgr(int messageSet) : messageSet(messageSet) {
    objectMade(this, describe("MessageMgr", messageSet));
}

MessageMgr::~MessageMgr() {
    objectDeleted(this);
}

// Returns for instance "message 72/1047". The program passes no further arguments.
std::string MessageMgr::getMessage(int message, int code, ...) const {
    std::string text = "message " + std::to_string(message) + "/" + std::to_string(code);
    record("getMessage " + text);
    return text;
}

std::string MessageMgr::getString(int caption) const {
    std::string text = "caption " + std::to_string(caption);
    record("getString " + text);
    return text;
}

}  // namespace VeskLib::Gui
