#include "platform/host/html/escape.h"

#include "platform/host/html/printText.h"

#include <algorithm>
#include <array>

namespace VeskLib::Host {

namespace {

struct Reference {
    char character;
    std::string_view text;
};

// Character references for the characters that are special in HTML.
constexpr Reference REFERENCES[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

const std::size_t FIRST_PRINTABLE = 0x20;
const char DELETE = '\x7F';
const char TAB = '\t';
constexpr std::string_view UNPRINTABLE = "\uFFFD";

// Unicode's pictures of the control characters below FIRST_PRINTABLE, U+2400 to U+241F, and of
// DELETE.
constexpr std::string_view PICTURES =
    "\u2400\u2401\u2402\u2403\u2404\u2405\u2406\u2407\u2408\u2409\u240A\u240B\u240C\u240D\u240E"
    "\u240F"
    "\u2410\u2411\u2412\u2413\u2414\u2415\u2416\u2417\u2418\u2419\u241A\u241B\u241C\u241D\u241E"
    "\u241F"
    "\u2421";
const std::size_t PICTURE_SIZE = 3;

// The characters outside ASCII that end a line, change the direction of text, are invisible, or are
// controls. Each consists of the bytes `start` and a byte from `first` to `last`.
struct HiddenCharacters {
    std::string_view start;
    unsigned char first;
    unsigned char last;
};

constexpr HiddenCharacters HIDDEN_CHARACTERS[] = {
    {"\xC2", 0x80, 0x9F},          // U+0080 to U+009F
    {"\xC2", 0xAD, 0xAD},          // U+00AD
    {"\xD8", 0x9C, 0x9C},          // U+061C
    {"\xE1\xA0", 0x8E, 0x8E},      // U+180E
    {"\xE2\x80", 0x8B, 0x8F},      // U+200B to U+200F
    {"\xE2\x80", 0xA8, 0xAE},      // U+2028 to U+202E
    {"\xE2\x81", 0xA0, 0xAF},      // U+2060 to U+206F
    {"\xEF\xBB", 0xBF, 0xBF},      // U+FEFF
    {"\xEF\xBF", 0xB9, 0xBB},      // U+FFF9 to U+FFFB
    {"\xF3\xA0\x80", 0x80, 0xBF},  // U+E0000 to U+E003F
    {"\xF3\xA0\x81", 0x80, 0xBF},  // U+E0040 to U+E007F
};

// Maps the first byte of each character that may be replaced to true.
constexpr std::array<bool, 256> makeFirstBytes() {
    std::array<bool, 256> table = {};
    for (std::size_t byte = 0; byte < FIRST_PRINTABLE; ++byte) {
        table[byte] = true;
    }
    table[static_cast<unsigned char>(DELETE)] = true;
    for (const Reference& reference : REFERENCES) {
        table[static_cast<unsigned char>(reference.character)] = true;
    }
    for (const HiddenCharacters& hidden : HIDDEN_CHARACTERS) {
        table[static_cast<unsigned char>(hidden.start.front())] = true;
    }
    return table;
}

constexpr std::array<bool, 256> FIRST_BYTES = makeFirstBytes();

std::string_view pictureOf(std::size_t number) {
    return PICTURES.substr(number * PICTURE_SIZE, PICTURE_SIZE);
}

// Returns the visible replacement for the character at the start of `rest`, and sets `size` to the
// character's bytes. Returns an empty text if the character needs no replacement.
std::string_view findVisible(std::string_view rest, std::size_t& size) {
    const auto byte = static_cast<unsigned char>(rest.front());
    size = 1;
    if (rest.front() == TAB) {
        return {};
    }
    if (byte < FIRST_PRINTABLE || rest.front() == DELETE) {
        return pictureOf(byte < FIRST_PRINTABLE ? byte : FIRST_PRINTABLE);
    }
    for (const HiddenCharacters& hidden : HIDDEN_CHARACTERS) {
        size = hidden.start.size() + 1;
        if (rest.size() >= size && rest.starts_with(hidden.start)) {
            const auto last = static_cast<unsigned char>(rest[size - 1]);
            if (last >= hidden.first && last <= hidden.last) {
                return UNPRINTABLE;
            }
        }
    }
    return {};
}

std::string_view findReference(std::string_view rest, std::size_t& size) {
    for (const Reference& reference : REFERENCES) {
        if (rest.front() == reference.character) {
            size = 1;
            return reference.text;
        }
    }
    return findVisible(rest, size);
}

// Passes `text` to `consume` in pieces, with the replacements that `find` returns.
template <typename Find, typename Consumer>
void forEachPiece(std::string_view text, Find find, Consumer consume) {
    const auto mayBeReplaced = [](char character) {
        return FIRST_BYTES[static_cast<unsigned char>(character)];
    };
    const char* pending = text.data();
    const char* const end = text.data() + text.size();
    const char* next = std::find_if(pending, end, mayBeReplaced);
    while (next != end) {
        std::size_t size = 1;
        const std::string_view found = find({next, end}, size);
        if (!found.empty()) {
            consume({pending, next});
            consume(found);
            pending = next + size;
        }
        next = std::find_if(found.empty() ? next + 1 : pending, end, mayBeReplaced);
    }
    consume({pending, end});
}

}  // namespace

std::string makeVisible(std::string_view text) {
    std::string visible;
    visible.reserve(text.size());
    forEachPiece(text, findVisible, [&visible](std::string_view piece) { visible += piece; });
    return visible;
}

std::string escapeHTML(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    forEachPiece(text, findReference, [&escaped](std::string_view piece) { escaped += piece; });
    return escaped;
}

void printEscaped(std::string_view text) {
    forEachPiece(text, findReference, printText);
}

std::string escapeScript(std::string_view text) {
    static const char DIGITS[] = "0123456789abcdef";
    // Aligned, so that the cost of a search does not depend on the address that the linker chooses.
    alignas(16) static const char UNSAFE[] = "\"'$`\\<>&\t";
    std::string escaped;
    escaped.reserve(text.size());
    forEachPiece(text, findVisible, [&escaped](std::string_view piece) {
        for (const char character : piece) {
            if (std::string_view(UNSAFE).find(character) == std::string_view::npos) {
                escaped += character;
                continue;
            }
            const auto byte = static_cast<unsigned char>(character);
            escaped += "\\x";
            escaped += DIGITS[byte >> 4];
            escaped += DIGITS[byte & 0xF];
        }
    });
    return escaped;
}

}  // namespace VeskLib::Host
