#pragma once

#include <span>
#include <string_view>

namespace VeskLib::Host {

// The message catalogues, one file per language made by gencat and read with catgets. In each,
// set 1 holds the messages, set 2 the captions (numbers from 9000 are the skeletons'), set 3 the
// trace texts. Trace texts are English in every language: engineers search for them. A message that
// has texts of its own for some codes has them in the set with its number, numbered by the code.
enum class TextSet { MESSAGES = 1, CAPTIONS = 2, TRACE = 3 };

inline constexpr int ENGLISH = 0;

struct Language {
    const char* tag;   // such as "en"
    const char* name;  // in the language itself
};

// Returns the languages of the board by their numbers. The build makes the list from the
// catalogues.
std::span<const Language> languages();

// The cookie in which the operator's choice of a language is kept.
inline constexpr const char* LANGUAGE_COOKIE = "language";

// Returns the tag of a language; that of English for an unknown number.
const char* languageTag(int language);

// The language cookie's when that names one of ours, else the first of ours in Accept-Language,
// else English.
int chooseLanguage(std::string_view cookie, std::string_view accepted);

// The language of the request. Chosen once per process.
int requestLanguage();

// Opens the catalogue of the request's language, which the first text would do otherwise.
void openTexts();

// The text, or null when the catalogue has none. It stays valid for the life of the process.
const char* findText(int language, TextSet set, int number);

// Returns the text that `message` has for `code` alone, valid for the life of the process; null if
// it has none.
const char* findTextForCode(int language, int message, int code);

}  // namespace VeskLib::Host
