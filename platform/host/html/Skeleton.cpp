#include "platform/host/html/Skeleton.h"

#include "platform/host/base/scriptNonce.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"
#include "platform/host/html/sharedComponents.h"
#include "platform/host/text/Catalogue.h"

#include <VeskLib/Gui/MessageMgr.h>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <sstream>
#include <utility>

namespace VeskLib::Host {

namespace {

using Components = std::map<std::string, Gui::HTMLComponent*>;

// Bytes of a skeleton for each of its pieces; most have fewer pieces.
const std::size_t USUAL_PIECE = 32;

bool isName(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_';
    });
}

bool takeSuffix(std::string_view& text, std::string_view suffix) {
    if (!text.ends_with(suffix)) {
        return false;
    }
    text.remove_suffix(suffix.size());
    return true;
}

Skeleton::Place takePlace(std::string_view& mark) {
    if (takeSuffix(mark, "|script")) {
        return Skeleton::Place::SCRIPT;
    }
    return takeSuffix(mark, "|attribute") ? Skeleton::Place::ATTRIBUTE : Skeleton::Place::MARKUP;
}

// What a mark of one word prints.
Skeleton::Kind kindOf(std::string_view word) {
    return word == "language"      ? Skeleton::Kind::LANGUAGE
           : word == "nonce"       ? Skeleton::Kind::NONCE
           : word == "staged_file" ? Skeleton::Kind::STAGED_FILE
                                   : Skeleton::Kind::COMPONENT;
}

bool parseNumber(std::string_view text, int& number) {
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && number > 0;
}

const Gui::HTMLComponent* find(const Components& components, std::string_view name) {
    static std::string key;  // keeps its memory from one name to the next
    key.assign(name);
    const auto entry = components.find(key);
    return entry == components.end() ? findShared(key) : entry->second;
}

// What a component prints.
std::string capture(const Gui::HTMLComponent& component) {
    std::stringbuf buffer(std::ios::out);
    std::streambuf* const page = std::cout.rdbuf(&buffer);
    try {
        component.printHTML();
    } catch (...) {
        std::cout.rdbuf(page);
        throw;
    }
    std::cout.rdbuf(page);
    return buffer.str();
}

std::string escapeFor(Skeleton::Place place, const std::string& text) {
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
    const std::size_t blank = mark.find(' ');
    if (blank == std::string_view::npos) {
        return parseWord(mark, openConditions);
    }
    const std::string_view kind = mark.substr(0, blank);
    mark.remove_prefix(blank + 1);
    if (kind == "if") {
        return parseCondition(Kind::IF, mark, openConditions);
    }
    if (kind == "unless") {
        return parseCondition(Kind::UNLESS, mark, openConditions);
    }
    Piece& piece = pieces.emplace_back();
    piece.place = takePlace(mark);
    if (kind == "text") {
        piece.kind = Kind::CAPTION;
        return parseNumber(mark, piece.number);
    }
    piece.kind = Kind::MESSAGE;
    const std::size_t dash = mark.find('-');
    return kind == "message" && dash != std::string_view::npos &&
           parseNumber(mark.substr(0, dash), piece.number) &&
           (mark.substr(dash) == "-0" || parseNumber(mark.substr(dash + 1), piece.code));
}

// A mark of one word: a component, unless it is one of those that have a meaning.
bool Skeleton::parseWord(std::string_view word, std::vector<std::size_t>& openConditions) {
    if (word == "end") {
        if (openConditions.empty()) {
            return false;
        }
        pieces[openConditions.back()].next = pieces.size();
        openConditions.pop_back();
        return true;
    }
    Piece& piece = pieces.emplace_back();
    piece.kind = kindOf(word);
    if (piece.kind != Kind::COMPONENT) {
        return true;
    }
    piece.place = takePlace(word);
    piece.text = word;
    // With an ending, a word that has a meaning would otherwise be a component that prints nothing.
    return isName(word) && word != "end" && kindOf(word) == Kind::COMPONENT;
}

bool Skeleton::parseCondition(Kind kind, std::string_view name,
                              std::vector<std::size_t>& openConditions) {
    openConditions.push_back(pieces.size());
    pieces.push_back({.kind = kind, .text = name});
    return isName(name);
}

void Skeleton::fail(std::size_t offset, const char* problem) const {
    const auto end = source.begin() + static_cast<std::ptrdiff_t>(offset);
    const auto line = std::count(source.begin(), end, '\n') + 1;
    const std::size_t lineStart = source.rfind('\n', offset) + 1;  // npos + 1 is 0
    throw SkeletonError{static_cast<unsigned int>(line),
                        static_cast<unsigned int>(offset - lineStart + 1), problem};
}

void Skeleton::print(const Components& components) const {
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
                    i = piece.next - 1;  // the loop adds the one again
                }
                break;
        }
    }
}

}  // namespace VeskLib::Host
