#pragma once

#include <string>

namespace VeskLib::Gui {

// The texts that operators read, in one language.
class MessageMgr {
public:
    // `messageSet` selects the language: 0 is English, 1 Japanese, further numbers are the board's
    // other languages; any other number is English.
    explicit MessageMgr(int messageSet);
    MessageMgr(const MessageMgr&) = delete;
    MessageMgr& operator=(const MessageMgr&) = delete;
    virtual ~MessageMgr();

    // Returns message number `message` as plain text. A `code` other than 0 is appended, so that
    // support can find the cause. The further arguments are for the text's printf-style
    // conversions. For an unknown number, returns a text that contains the number.
    std::string getMessage(int message, int code, ...) const;

    // Returns caption number `caption`; for an unknown number, a text that contains the number.
    std::string getString(int caption) const;

private:
    int messageSet;
};

}  // namespace VeskLib::Gui
