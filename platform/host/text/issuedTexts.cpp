#include "platform/host/text/issuedTexts.h"

#include "platform/host/channel/BackendError.h"
#include "platform/host/channel/Channel.h"
#include "platform/host/text/Catalogue.h"

#include <VeskLib/Gui/MessageMgr.h>

#include <algorithm>
#include <vector>

namespace VeskLib::Host {

namespace {

const int RESTORED = 70;
const int RESTORE_FAILED = 71;
const int INTERNAL_ERROR = 9020;

struct Note {
    std::string text;
    IssuedText issued;
};

std::vector<Note>& notes() {
    static std::vector<Note> all;
    return all;
}

std::vector<Note>::iterator find(std::string_view text) {
    return std::ranges::find(notes(), text, &Note::text);
}

bool isOutcomeLost(int code) {
    switch (code) {
        case BACKEND_OUTCOME_NOT_RECORDED:
        case CHANNEL_TIMEOUT:
        case CHANNEL_BROKEN:
        case CHANNEL_MALFORMED:
            return true;
        default:
            return findTextForCode(ENGLISH, RESTORE_FAILED, code) == nullptr;
    }
}

}  // namespace

void noteIssuedText(std::string_view text, const IssuedText& issued) {
    const auto known = find(text);
    if (known != notes().end()) {
        known->issued = issued;
    } else {
        notes().push_back({std::string(text), issued});
    }
}

std::string issueCaption(int caption, int code) {
    std::string text = Gui::MessageMgr(requestLanguage()).getString(caption);
    if (code != 0) {
        text += " [" + std::to_string(caption) + "-" + std::to_string(code) + "]";
    }
    noteIssuedText(text, {.number = caption, .code = code});
    return text;
}

const IssuedText* findIssuedText(std::string_view text) {
    const auto known = find(text);
    return known == notes().end() ? nullptr : &known->issued;
}

Outcome outcomeOf(const IssuedText& text) {
    if (text.number == RESTORED) {
        return Outcome::DONE;
    }
    const bool lost = text.number == INTERNAL_ERROR ||
                      (text.number == RESTORE_FAILED && isOutcomeLost(text.code));
    return lost ? Outcome::UNKNOWN : Outcome::REFUSED;
}

}  // namespace VeskLib::Host
