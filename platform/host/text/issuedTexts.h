#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The trace text that the program also shows: what a screen needs could not be had.
inline constexpr int UNAVAILABLE_TEXT = 107;

// The program hands the platform its messages as texts. What each is comes from here, where it was
// issued.
struct IssuedText {
    int number = 0;
    int code = 0;
    bool traced = false;  // a text of the trace log, which is English in every language
};

// What a message says about the request.
enum class Outcome {
    UNTOLD,   // nothing: a text that the catalogue did not issue
    DONE,     // carried out
    REFUSED,  // not carried out
    UNKNOWN,  // nobody knows: the operator has to look
};

// Remembers what `text` is until the process ends. A process answers one request, so there are few.
void noteIssuedText(std::string_view text, const IssuedText& issued);

// Returns caption `caption` in the language of the request, for what a program of the board says
// itself about a request: with number and `code` at its end unless `code` is 0, and noted.
std::string issueCaption(int caption, int code = 0);

// Returns what `text` is; null if it was not issued. Valid until the next text is noted.
const IssuedText* findIssuedText(std::string_view text);

// Returns what `text` says. A restore that failed with a code without a text of its own is UNKNOWN.
Outcome outcomeOf(const IssuedText& text);

}  // namespace VeskLib::Host
