// Escaping texts for markup and scripts, and printing messages as paragraphs.

#include "platform/host/html/escape.h"

#include "platform/host/html/messageLines.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/printedBy.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace VeskLib;

namespace {

const std::array<std::pair<const char*, const char*>, 5> REFERENCES = {
    {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}}};

// Returns the text that a browser shows for escaped markup.
std::string readMarkup(std::string text) {
    for (const auto& [reference, character] : REFERENCES) {
        text = Fuzz::replaceAll(text, reference, character);
    }
    return text;
}

// Returns the value of a script string with this content.
std::string readScript(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain += text[i];
        } else {
            Fuzz::require(text[i + 1] == 'x', "every escape is \\xHH");
            plain += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        }
    }
    return plain;
}

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && byte != '\t') || byte == 0x7F;
}

bool containsControl(const std::string& text) {
    for (const char character : text) {
        if (isControl(character)) {
            return true;
        }
    }
    return false;
}

// Returns true if browsers do not show the character. `size` is the length of its UTF-8 encoding;
// browsers reject an encoding that is longer than necessary.
bool isHidden(std::uint32_t character, std::size_t size) {
    const std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    static const std::pair<std::uint32_t, std::uint32_t> HIDDEN[] = {
        {0x80, 0x9F},     {0xAD, 0xAD},     {0x61C, 0x61C},   {0x180E, 0x180E}, {0x200B, 0x200F},
        {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
    return character >= least[size] &&
           std::any_of(std::begin(HIDDEN), std::end(HIDDEN), [character](const auto& range) {
               return character >= range.first && character <= range.second;
           });
}

// Returns the text with a visible replacement for each hidden character.
std::string makeVisible(const std::string& text) {
    std::string visible;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (isControl(text[i])) {
            visible += "\xE2\x90";
            visible += static_cast<char>(byte == 0x7F ? 0xA1 : 0x80 + byte);
            continue;
        }
        const std::size_t size = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        std::uint32_t character = byte & (0xFFU >> (size + 1));
        bool whole = size > 1 && i + size <= text.size();
        for (std::size_t place = 1; whole && place < size; ++place) {
            const auto next = static_cast<unsigned char>(text[i + place]);
            whole = (next & 0xC0U) == 0x80;
            character = character << 6 | (next & 0x3FU);
        }
        const bool hidden = whole && isHidden(character, size);
        visible += hidden ? "\xEF\xBF\xBD" : text.substr(i, 1);
        i += hidden ? size - 1 : 0;
    }
    return visible;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    const std::string visible = makeVisible(text);
    const std::string markup = Host::escapeHTML(text);
    Fuzz::require(markup.find_first_of("<>\"'") == std::string::npos && !containsControl(markup),
                  "escaped markup contains no markup and no control characters");
    Fuzz::require(readMarkup(markup) == visible, "a browser shows the text");

    const std::string script = Host::escapeScript(text);
    Fuzz::require(script.find_first_of("<>\"'`$&") == std::string::npos && !containsControl(script),
                  "an escaped text cannot end its script string");
    Fuzz::require(readScript(script) == visible, "a script string has the value of the text");

    const std::string paragraphs = Test::printedBy([&text] { Host::printMessage(text); });
    const std::string inner = Fuzz::replaceAll(Fuzz::replaceAll(paragraphs, "<p>", ""), "</p>", "");
    Fuzz::require(inner.find_first_of("<>\"'") == std::string::npos,
                  "a message contains no markup except paragraphs");
    return 0;
}
