// Checks the board's texts during the build: every language must have the same numbers with the
// same placeholders, and every skeleton must be well formed and use existing captions.
//
// Usage: BOARD_ROOT=... checkTexts SKELETON...

#include "platform/host/html/Skeleton.h"
#include "platform/host/storage/files.h"
#include "platform/host/text/Catalogue.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace VeskLib::Host;

const int LARGEST_NUMBER = 32767;
const int LARGEST_MESSAGE = 255;  // with texts by code; also the largest portable set number
const int LARGEST_CODE = 4095;    // with its own text
const std::size_t LARGEST_SKELETON = 256 * 1024;

// Returns the printf-style conversions of a text, such as "%s%d".
std::string conversionsOf(std::string_view text) {
    std::string conversions;
    for (std::size_t i = text.find('%'); i < text.size(); i = text.find('%', i + 1)) {
        const std::size_t end = text.find_first_of("%sdiuxXc", i + 1);
        if (end == std::string_view::npos) {
            return conversions + "%?";
        }
        conversions += text[end] == '%' ? "" : text.substr(i, end - i + 1);
        i = end;
    }
    return conversions;
}

// Returns the marks in a text that the pages replace, such as "#1#2", sorted by number.
std::string marksOf(std::string_view text) {
    std::vector<std::string> marks;
    for (std::size_t i = text.find('#'); i < text.size(); i = text.find('#', i + 1)) {
        marks.emplace_back(text.substr(i, 2));
    }
    std::ranges::sort(marks);
    std::string all;
    for (const std::string& mark : marks) {
        all += mark;
    }
    return all;
}

// `find` must return the text of `number` in a language, or null.
template <typename Find>
bool checkNumber(int set, int number, Find find) {
    const char* first = find(ENGLISH);
    for (int language = ENGLISH + 1; language < std::ssize(languages()); ++language) {
        const char* other = find(language);
        if ((first == nullptr) != (other == nullptr)) {
            std::cerr << "Text " << number << " of set " << set << " is not in every language.\n";
            return false;
        }
        if (first != nullptr &&
            (conversionsOf(first) != conversionsOf(other) || marksOf(first) != marksOf(other))) {
            std::cerr << "Text " << number << " of set " << set << " has other placeholders in "
                      << languageTag(language) << ".\n";
            return false;
        }
    }
    return true;
}

bool checkText(TextSet set, int number) {
    return checkNumber(static_cast<int>(set), number,
                       [&](int language) { return findText(language, set, number); });
}

bool checkTextForCode(int message, int code) {
    return checkNumber(message, code,
                       [&](int language) { return findTextForCode(language, message, code); });
}

bool checkCatalogues() {
    bool sound = true;
    int count = 0;
    for (int number = 1; number <= LARGEST_NUMBER; ++number) {
        sound = checkText(TextSet::MESSAGES, number) && sound;
        sound = checkText(TextSet::CAPTIONS, number) && sound;
        count += findText(ENGLISH, TextSet::MESSAGES, number) != nullptr ? 1 : 0;
    }
    for (int message = static_cast<int>(TextSet::CODES); message <= LARGEST_MESSAGE; ++message) {
        for (int code = 1; code <= LARGEST_CODE; ++code) {
            sound = checkTextForCode(message, code) && sound;
        }
    }
    if (count == 0) {
        std::cerr << "There are no messages: are the catalogues in place?\n";
    }
    return sound && count != 0;
}

bool checkTexts(const Skeleton& skeleton, const std::string& path) {
    bool sound = true;
    for (const Skeleton::Piece& piece : skeleton.getPieces()) {
        const bool message = piece.kind == Skeleton::Kind::MESSAGE;
        const TextSet set = message ? TextSet::MESSAGES : TextSet::CAPTIONS;
        if ((message || piece.kind == Skeleton::Kind::CAPTION) &&
            findText(ENGLISH, set, piece.number) == nullptr) {
            std::cerr << path << ": there is no text " << piece.number << ".\n";
            sound = false;
        }
    }
    return sound;
}

bool checkSkeleton(const std::string& path) {
    std::vector<unsigned char> bytes;
    if (!readFile(path, LARGEST_SKELETON, bytes)) {
        std::cerr << path << ": cannot be read.\n";
        return false;
    }
    try {
        return checkTexts(Skeleton(std::string(bytes.begin(), bytes.end())), path);
    } catch (const SkeletonError& error) {
        std::cerr << path << ":" << error.line << ":" << error.column << ": " << error.problem
                  << "\n";
        return false;
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    bool sound = checkCatalogues();
    for (int i = 1; i < argumentCount; ++i) {
        sound = checkSkeleton(arguments[i]) && sound;
    }
    return sound ? 0 : 1;
}
