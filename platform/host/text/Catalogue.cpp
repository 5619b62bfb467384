#include "platform/host/text/Catalogue.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/cookies.h"

#include <VeskLib/getCGIPath.h>

#include <nl_types.h>

#include <string>
#include <vector>

namespace VeskLib::Host {

namespace {

bool isKnown(int language) {
    return language >= 0 && language < std::ssize(languages());
}

// Returns the number of a language tag such as "ja" or "ja-JP"; -1 if it is not one of ours.
int findLanguage(std::string_view tag) {
    for (int language = 0; isKnown(language); ++language) {
        const std::string_view ours = languageTag(language);
        if (tag.starts_with(ours) && (tag.size() == ours.size() || tag[ours.size()] == '-')) {
            return language;
        }
    }
    return -1;
}

// Ignores the weights, because browsers list the languages in order of preference.
int findAccepted(std::string_view accepted) {
    while (!accepted.empty()) {
        const std::size_t end = accepted.find(',');
        std::string_view entry = accepted.substr(0, end);
        accepted = end == std::string_view::npos ? std::string_view() : accepted.substr(end + 1);
        entry = entry.substr(0, entry.find(';'));
        const std::size_t start = entry.find_first_not_of(' ');
        entry.remove_prefix(start == std::string_view::npos ? entry.size() : start);
        const int language = findLanguage(entry.substr(0, entry.find(' ')));
        if (language >= 0) {
            return language;
        }
    }
    return ENGLISH;
}

nl_catd openCatalogue(int language) {
    // Never destroyed, because the texts remain valid until the process ends.
    static auto& catalogues = *new std::vector<nl_catd>(languages().size());
    nl_catd& catalogue = catalogues[static_cast<std::size_t>(language)];
    if (catalogue == nullptr) {
        const std::string folder = getCGIPath(CATALOGUE_FOLDER);
        catalogue = catopen((folder + "/messages_" + languageTag(language) + ".cat").c_str(), 0);
    }
    return catalogue;
}

const char* find(int language, int set, int number) {
    nl_catd catalogue = openCatalogue(isKnown(language) ? language : ENGLISH);
    if (catalogue == reinterpret_cast<nl_catd>(-1)) {
        return nullptr;
    }
    return catgets(catalogue, set, number, nullptr);
}

}  // namespace

const char* languageTag(int language) {
    return languages()[static_cast<std::size_t>(isKnown(language) ? language : ENGLISH)].tag;
}

int chooseLanguage(std::string_view cookie, std::string_view accepted) {
    const int chosen = findLanguage(cookie);
    return chosen >= 0 ? chosen : findAccepted(accepted);
}

int requestLanguage() {
    static const int LANGUAGE = chooseLanguage(readCookie(cookieName(LANGUAGE_COOKIE)),
                                               readEnvironment("HTTP_ACCEPT_LANGUAGE"));
    return LANGUAGE;
}

void openTexts() {
    static_cast<void>(openCatalogue(requestLanguage()));
}

const char* findText(int language, TextSet set, int number) {
    return find(language, static_cast<int>(set), number);
}

const char* findTextForCode(int language, int message, int code) {
    return code > 0 ? find(language, message, code) : nullptr;
}

}  // namespace VeskLib::Host
