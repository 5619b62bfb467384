#include "platform/host/html/escape.h"

#include "platform/host/html/printText.h"

#include <array>

namespace VeskLib::Host {

namespace {

struct Reference {
    char character;
    std::string_view text;
};

// What stands in a page for the characters that would leave their place.
constexpr Reference REFERENCES[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

// For each byte the number of its reference, counted from 1; 0 for what stands for itself.
constexpr std::array<unsigned char, 256> makeReferenceTable() {
    std::array<unsigned char, 256> table = {};
    unsigned char number = 0;
    for (const Reference& reference : REFERENCES) {
        table[static_cast<unsigned char>(reference.character)] = ++number;
    }
    return table;
}

constexpr std::array<unsigned char, 256> REFERENCE_TABLE = makeReferenceTable();

// Hands on what stands in a page for `text`, in pieces.
template <typename Consumer>
void forEachPiece(std::string_view text, Consumer consume) {
    std::size_t handedOn = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char number = REFERENCE_TABLE[static_cast<unsigned char>(text[i])];
        if (number != 0) {
            consume(text.substr(handedOn, i - handedOn));
            consume(REFERENCES[number - 1].text);
            handedOn = i + 1;
        }
    }
    consume(text.substr(handedOn));
}

}  // namespace

std::string escapeHTML(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    forEachPiece(text, [&escaped](std::string_view piece) { escaped += piece; });
    return escaped;
}

void printEscaped(std::string_view text) {
    forEachPiece(text, printText);
}

std::string escapeScript(std::string_view text) {
    static const char DIGITS[] = "0123456789abcdef";
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        // U+2028 and U+2029, which older scripts take for line ends, are E2 80 A8 and E2 80 A9.
        const std::string_view rest = text.substr(i, 3);
        if (rest == "\xE2\x80\xA8" || rest == "\xE2\x80\xA9") {
            escaped += rest.back() == '\xA8' ? "\\u2028" : "\\u2029";
            i += 2;
        } else if (byte < 0x20 || byte == 0x7F ||
                   std::string_view("\"'$`\\<>&").find(text[i]) != std::string_view::npos) {
            escaped += "\\x";
            escaped += DIGITS[byte >> 4];
            escaped += DIGITS[byte & 0xF];
        } else {
            escaped += text[i];
        }
    }
    return escaped;
}

}  // namespace VeskLib::Host
