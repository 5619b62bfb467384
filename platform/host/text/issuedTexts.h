#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The trace text that the program also shows: information for a screen is unavailable.
inline constexpr int UNAVAILABLE_TEXT = 107;

// The number and the code of a text. The program passes its messages to the platform as plain
// texts, so the platform notes them when it issues a text.
struct IssuedText {
    int number = 0;
    int code = 0;
    bool traced = false;  // a text of the trace log, which is English in every language
};

// The outcome of the request according to a message.
enum class Outcome {
    UNTOLD,   // none: the text is not from the catalogue
    DONE,     // carried out
    REFUSED,  // not carried out
    UNKNOWN,  // not known: the operator has to check
};

// Notes the number and the code of `text` until the process ends. A process answers one request, so
// there are few texts.
void noteIssuedText(std::string_view text, const IssuedText& issued);

// Returns caption `caption` in the language of the request and notes it. Unless `code` is 0,
// appends the number and the code. For the messages of the board's own programs.
std::string issueCaption(int caption, int code = 0);

// Returns the note for `text`, valid until the next text is noted; null if there is none.
const IssuedText* findIssuedText(std::string_view text);

// Returns the outcome according to `text`. It is UNKNOWN for a failed restore if the code has no
// special text.
Outcome outcomeOf(const IssuedText& text);

}  // namespace VeskLib::Host
