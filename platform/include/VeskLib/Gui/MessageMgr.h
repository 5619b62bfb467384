#pragma once

#include <string>

namespace VeskLib::Gui {

// The texts that operators read, in one language.
class MessageMgr {
public:
    // `messageSet` chooses the language: 0 English, 1 Japanese, then the others that the board has;
    // a number that has none English.
    explicit MessageMgr(int messageSet);
    MessageMgr(const MessageMgr&) = delete;
    MessageMgr& operator=(const MessageMgr&) = delete;
    virtual ~MessageMgr();

    // Message `message`, with `code` at its end when it is not 0, so that support can find the
    // cause. Further arguments are those of the text's printf-style conversions. The result is
    // plain text; an unknown number gives a text that names the number.
    std::string getMessage(int message, int code, ...) const;

    // Caption `caption`; an unknown number gives a text that names the number.
    std::string getString(int caption) const;

private:
    int messageSet;
};

}  // namespace VeskLib::Gui
