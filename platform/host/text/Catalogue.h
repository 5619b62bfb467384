#pragma once

#include <span>
#include <string_view>

namespace VeskLib::Host {

// The message catalogues, one file per language, made by gencat and read with catgets. In each,
// set 1 contains the messages, set 2 the captions (those of the skeletons from number 9000 on), set
// 3 the trace texts, and set 4 the back-end's codes in words. Trace texts are English in every
// language, because engineers search for them. If a message has special texts for some codes, they
// are in the set that has the message's number, numbered by the code.
enum class TextSet { MESSAGES = 1, CAPTIONS = 2, TRACE = 3, CODES = 4 };

inline constexpr int ENGLISH = 0;

struct Language {
    const char* tag;   // such as "en"
    const char* name;  // in the language itself
};

// Returns the languages of the board by their numbers. The build makes the list from the
// catalogues.
std::span<const Language> languages();

// The cookie that stores the language chosen by the operator.
inline constexpr const char* LANGUAGE_COOKIE = "language";

// Returns the tag of a language; "en" for an unknown number.
const char* languageTag(int language);

// Returns the language of the cookie if it is one of ours, otherwise the first of ours in
// Accept-Language, otherwise English.
int chooseLanguage(std::string_view cookie, std::string_view accepted);

// Returns the language of the request. Chosen once per process.
int requestLanguage();

// Opens the catalogue of the request's language. Optional: otherwise the first text that is needed
// opens it.
void openTexts();

// Returns the text, valid until the process ends; null if the catalogue has none.
const char* findText(int language, TextSet set, int number);

// Returns the special text of `message` for `code`, valid until the process ends; null if there is
// none.
const char* findTextForCode(int language, int message, int code);

}  // namespace VeskLib::Host
