#include <VeskLib/Gui/MessageMgr.h>

#include "platform/host/text/Catalogue.h"
#include "platform/host/text/formatText.h"
#include "platform/host/text/issuedTexts.h"

#include <cstdarg>

namespace VeskLib::Gui {

using Host::findText;
using Host::TextSet;

namespace {

const std::size_t LONGEST_MESSAGE = 1024;

}  // namespace

MessageMgr::MessageMgr(int messageSet) : messageSet(messageSet) {
}

MessageMgr::~MessageMgr() = default;

std::string MessageMgr::getMessage(int message, int code, ...) const {
    char text[LONGEST_MESSAGE];
    std::va_list arguments;
    va_start(arguments, code);
    const char* const own = Host::findTextForCode(messageSet, message, code);
    Host::formatText(text, sizeof text,
                     own != nullptr ? own : findText(messageSet, TextSet::MESSAGES, message),
                     message, arguments);
    va_end(arguments);
    std::string shown = text;
    if (code != 0) {
        shown += " [" + std::to_string(message) + "-" + std::to_string(code) + "]";
    }
    Host::noteIssuedText(shown, {.number = message, .code = code});
    return shown;
}

std::string MessageMgr::getString(int caption) const {
    const char* text = findText(messageSet, TextSet::CAPTIONS, caption);
    return text != nullptr ? text : "Text " + std::to_string(caption) + " is missing.";
}

}  // namespace VeskLib::Gui
