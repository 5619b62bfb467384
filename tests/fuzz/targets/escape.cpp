// The escaping of texts for markup and for scripts, and messages printed as paragraphs.

#include "platform/host/html/escape.h"

#include "platform/host/html/messageLines.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/printedBy.h"

#include <array>
#include <utility>

using namespace VeskLib;

namespace {

const std::array<std::pair<const char*, const char*>, 5> REFERENCES = {
    {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}}};

// What a browser makes of escaped markup.
std::string readMarkup(std::string text) {
    for (const auto& [reference, character] : REFERENCES) {
        text = Fuzz::replaceAll(text, reference, character);
    }
    return text;
}

// What a browser makes of the inside of a script string.
std::string readScript(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain += text[i];
        } else {
            Fuzz::require(text[i + 1] == 'x', "there is one kind of escapes");
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

bool holdsControl(const std::string& text) {
    for (const char character : text) {
        if (isControl(character)) {
            return true;
        }
    }
    return false;
}

// The text as it must be seen: something in place of each character that is hidden.
std::string makeVisible(const std::string& text) {
    std::string visible;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (isControl(text[i])) {
            visible += "\xE2\x90";
            visible += static_cast<char>(byte == 0x7F ? 0xA1 : 0x80 + byte);
            continue;
        }
        std::uint32_t character = 0;
        std::size_t size = 1;
        const auto at = [&text, i](std::size_t place) {
            return i + place < text.size() ? static_cast<unsigned char>(text[i + place]) : 0U;
        };
        if ((byte == 0xC2 || byte == 0xD8) && (at(1) & 0xC0U) == 0x80) {
            character = (byte & 0x1FU) << 6 | (at(1) & 0x3FU);
            size = 2;
        } else if (byte == 0xE2 && (at(1) & 0xC0U) == 0x80 && (at(2) & 0xC0U) == 0x80) {
            character = 0x2000U | (at(1) & 0x3FU) << 6 | (at(2) & 0x3FU);
            size = 3;
        }
        const bool hidden = (character >= 0x80 && character < 0xA0) || character == 0x61C ||
                            character == 0x200E || character == 0x200F ||
                            (character >= 0x2028 && character <= 0x202E) ||
                            (character >= 0x2066 && character <= 0x2069);
        visible += hidden ? "\xEF\xBF\xBD" : text.substr(i, size);
        i += size - 1;
    }
    return visible;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    const std::string visible = makeVisible(text);
    const std::string markup = Host::escapeHTML(text);
    Fuzz::require(markup.find_first_of("<>\"'") == std::string::npos && !holdsControl(markup),
                  "a text stays a text");
    Fuzz::require(readMarkup(markup) == visible, "a browser shows the text");

    const std::string script = Host::escapeScript(text);
    Fuzz::require(script.find_first_of("<>\"'`$&") == std::string::npos && !holdsControl(script),
                  "a text stays within its script string");
    Fuzz::require(readScript(script) == visible, "a script sees the text");

    const std::string paragraphs = Test::printedBy([&text] { Host::printMessage(text); });
    const std::string inner = Fuzz::replaceAll(Fuzz::replaceAll(paragraphs, "<p>", ""), "</p>", "");
    Fuzz::require(inner.find_first_of("<>\"'") == std::string::npos,
                  "a message brings no markup but its paragraphs");
    return 0;
}
