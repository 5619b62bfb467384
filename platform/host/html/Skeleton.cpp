#include "platform/host/html/Skeleton.h"

#include "platform/host/base/scriptNonce.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/html/TextBuffer.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"
#include "platform/host/html/sharedComponents.h"
#include "platform/host/text/Catalogue.h"

#include <VeskLib/Gui/MessageMgr.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iostream>
#include <utility>

namespace VeskLib::Host {

namespace {

// A page has few components, so that a linear search is faster than the map.
using Components = std::vector<std::pair<std::string_view, const Gui::HTMLComponent*>>;

// Bytes of a skeleton per piece, to reserve memory; most skeletons have fewer pieces.
const std::size_t USUAL_PIECE = 32;

constexpr std::array<bool, 256> makeNameCharacters() {
    std::array<bool, 256> table = {};
    for (const char character :
         std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_")) {
        table[static_cast<unsigned char>(character)] = true;
    }
    return table;
}

bool isNameCharacter(char character) {
    static constexpr std::array<bool, 256> TABLE = makeNameCharacters();
    return TABLE[static_cast<unsigned char>(character)];
}

// Removes a name from the start of `text` and returns it.
std::string_view takeName(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isNameCharacter);
    const std::string_view name(text.begin(), end);
    text.remove_prefix(name.size());
    return name;
}

// Parses the place at the end of a mark, which may be empty. Returns false if it is not a place.
bool readPlace(std::string_view ending, Skeleton::Place& place) {
    if (ending == "|script") {
        place = Skeleton::Place::SCRIPT;
    } else if (ending == "|attribute") {
        place = Skeleton::Place::ATTRIBUTE;
    }
    return ending.empty() || place != Skeleton::Place::MARKUP;
}

// Returns the kind of a mark that consists of one word.
Skeleton::Kind kindOf(std::string_view word) {
    return word == "language"      ? Skeleton::Kind::LANGUAGE
           : word == "nonce"       ? Skeleton::Kind::NONCE
           : word == "staged_file" ? Skeleton::Kind::STAGED_FILE
                                   : Skeleton::Kind::COMPONENT;
}

// Removes a number above 0 from the start of `text`. Returns false if there is none.
bool takeNumber(std::string_view& text, int& number) {
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return result.ec == std::errc() && number > 0;
}

// Removes "-" and a message's code, 0 for none, from the start of `text`. Returns false if there is
// no code.
bool takeCode(std::string_view& text, int& code) {
    if (!text.starts_with('-')) {
        return false;
    }
    text.remove_prefix(1);
    if (text.starts_with('0')) {
        text.remove_prefix(1);
        return true;
    }
    return takeNumber(text, code);
}

const Gui::HTMLComponent* find(const Components& components, std::string_view name) {
    const auto entry = std::ranges::find(components, name, &Components::value_type::first);
    return entry == components.end() ? findShared(name) : entry->second;
}

// Returns what a component prints.
std::string capture(const Gui::HTMLComponent& component) {
    TextBuffer buffer;
    std::streambuf* const page = std::cout.rdbuf(&buffer);
    try {
        component.printHTML();
    } catch (...) {
        std::cout.rdbuf(page);
        throw;
    }
    std::cout.rdbuf(page);
    return std::string(buffer.view());
}

std::string escapeFor(Skeleton::Place place, std::string_view text) {
    return place == Skeleton::Place::SCRIPT ? escapeScript(text) : escapeHTML(text);
}

void printComponent(const Skeleton::Piece& piece, const Components& components) {
    const Gui::HTMLComponent* component = find(components, piece.text);
    if (component == nullptr) {
        return;
    }
    if (piece.place == Skeleton::Place::MARKUP) {
        component->printHTML();
    } else {
        printText(escapeFor(piece.place, capture(*component)));
    }
}

void printMessage(const Skeleton::Piece& piece) {
    const Gui::MessageMgr messages(requestLanguage());
    printText(escapeFor(piece.place, messages.getMessage(piece.number, piece.code)));
}

void printCaption(const Skeleton::Piece& piece) {
    const char* text = findText(requestLanguage(), TextSet::CAPTIONS, piece.number);
    if (text != nullptr) {
        printText(escapeFor(piece.place, text));
    }
}

}  // namespace

Skeleton::Skeleton(std::string source) : source(std::move(source)) {
    parse();
}

void Skeleton::parse() {
    const std::string_view text = source;
    pieces.reserve(text.size() / USUAL_PIECE);
    std::vector<std::size_t> openConditions;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t start = std::min(text.find("{{", position), text.size());
        if (start > position) {
            pieces.push_back({.text = text.substr(position, start - position)});
        }
        if (start == text.size()) {
            break;
        }
        const std::size_t end = text.find("}}", start);
        if (end == std::string_view::npos) {
            fail(start, "the mark is not closed");
        }
        if (!parseMark(text.substr(start + 2, end - start - 2), openConditions)) {
            fail(start, "not a mark");
        }
        position = end + 2;
    }
    if (!openConditions.empty()) {
        const auto name = pieces[openConditions.back()].text.data() - text.data();
        fail(text.rfind("{{", static_cast<std::size_t>(name)), "the condition has no end");
    }
}

bool Skeleton::parseMark(std::string_view mark, std::vector<std::size_t>& openConditions) {
    const std::string_view word = takeName(mark);
    if (!mark.starts_with(' ')) {
        return parseWord(word, mark, openConditions);
    }
    mark.remove_prefix(1);
    if (word == "if") {
        return parseCondition(Kind::IF, mark, openConditions);
    }
    if (word == "unless") {
        return parseCondition(Kind::UNLESS, mark, openConditions);
    }
    Piece& piece = pieces.emplace_back();
    piece.kind = word == "text" ? Kind::CAPTION : Kind::MESSAGE;
    return takeNumber(mark, piece.number) &&
           (word == "text" || (word == "message" && takeCode(mark, piece.code))) &&
           readPlace(mark, piece.place);
}

// Parses a mark of one word: a keyword, or else a component's name.
bool Skeleton::parseWord(std::string_view word, std::string_view ending,
                         std::vector<std::size_t>& openConditions) {
    if (word == "end" && ending.empty()) {
        if (openConditions.empty()) {
            return false;
        }
        pieces[openConditions.back()].next = pieces.size();
        openConditions.pop_back();
        return true;
    }
    Piece& piece = pieces.emplace_back();
    piece.kind = kindOf(word);
    piece.text = word;
    // Only a component can have a place.
    return !word.empty() && word != "end" &&
           (piece.kind == Kind::COMPONENT ? readPlace(ending, piece.place) : ending.empty());
}

bool Skeleton::parseCondition(Kind kind, std::string_view name,
                              std::vector<std::size_t>& openConditions) {
    openConditions.push_back(pieces.size());
    pieces.push_back({.kind = kind, .text = takeName(name)});
    return name.empty() && !pieces.back().text.empty();
}

void Skeleton::fail(std::size_t offset, const char* problem) const {
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(offset);
    const auto line = std::count(source.begin(), end, '\n') + 1;
    const std::size_t lineStart = source.rfind('\n', offset) + 1;  // npos + 1 is 0
    throw SkeletonError{static_cast<unsigned int>(line),
                        static_cast<unsigned int>(offset - lineStart + 1), problem};
}

void Skeleton::print(const std::map<std::string, Gui::HTMLComponent*>& map) const {
    const Components components(map.begin(), map.end());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const Piece& piece = pieces[i];
        switch (piece.kind) {
            case Kind::PLAIN:
                printText(piece.text);
                break;
            case Kind::COMPONENT:
                printComponent(piece, components);
                break;
            case Kind::CAPTION:
                printCaption(piece);
                break;
            case Kind::MESSAGE:
                printMessage(piece);
                break;
            case Kind::LANGUAGE:
                printText(languageTag(requestLanguage()));
                break;
            case Kind::NONCE:
                printText(scriptNonce());
                break;
            case Kind::STAGED_FILE:
                printText(shownFile());
                break;
            case Kind::IF:
            case Kind::UNLESS:
                if ((find(components, piece.text) != nullptr) != (piece.kind == Kind::IF)) {
                    i = piece.next - 1;  // the loop increments it
                }
                break;
        }
    }
}

}  // namespace VeskLib::Host
