#include "board/web/utf8.h"

#include <algorithm>
#include <cstdint>

namespace VeskLib::Board {

namespace {

unsigned char byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// Returns the length in bytes of a character that begins with `first`; 0 if none does.
std::size_t characterLength(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return 2;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 3;
    }
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// Removes the character at the start of `text`, which must not be empty. Returns false if it is
// malformed.
bool takeCharacter(std::string_view& text, std::uint32_t& character) {
    const unsigned char first = byteAt(text, 0);
    const std::size_t length = characterLength(first);
    if (length == 0 || length > text.size()) {
        return false;
    }
    character = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char byte = byteAt(text, i);
        if (!isContinuation(byte)) {
            return false;
        }
        character = character << 6 | (byte & 0x3FU);
    }
    text.remove_prefix(length);
    const bool overlong =
        (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return !overlong && !surrogate && character <= 0x10FFFF;
}

bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

bool isUnreserved(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '.' ||
           character == '_';
}

}  // namespace

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<unsigned char>(character) < 0x80; });
}

bool isPrintableUTF8(std::string_view text) {
    std::uint32_t character = 0;
    while (!text.empty()) {
        if (!takeCharacter(text, character) || isControl(character)) {
            return false;
        }
    }
    return true;
}

std::string replaceNonASCII(std::string_view text, char replacement) {
    std::string plain;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            plain += character;
        } else if (!isContinuation(byte)) {
            plain += replacement;
        }
    }
    return plain;
}

std::string percentEncode(std::string_view text) {
    const char* const digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (isUnreserved(character)) {
            encoded += character;
        } else {
            encoded += {'%', digits[byte >> 4], digits[byte & 0x0F]};
        }
    }
    return encoded;
}

}  // namespace VeskLib::Board
