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
        } else if (text.compare(i, 5, "\\u202") == 0) {
            plain += text[i + 5] == '8' ? "\xE2\x80\xA8" : "\xE2\x80\xA9";
            i += 5;
        } else {
            Fuzz::require(text[i + 1] == 'x', "there are two kinds of escapes");
            plain += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        }
    }
    return plain;
}

bool holdsControl(const std::string& text) {
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    const std::string markup = Host::escapeHTML(text);
    Fuzz::require(markup.find_first_of("<>\"'") == std::string::npos, "a text stays a text");
    Fuzz::require(readMarkup(markup) == text, "a browser shows the text as it was");

    const std::string script = Host::escapeScript(text);
    Fuzz::require(script.find_first_of("<>\"'`$&") == std::string::npos && !holdsControl(script),
                  "a text stays within its script string");
    Fuzz::require(readScript(script) == text, "a script sees the text as it was");

    const std::string paragraphs = Test::printedBy([&text] { Host::printMessage(text); });
    const std::string inner = Fuzz::replaceAll(Fuzz::replaceAll(paragraphs, "<p>", ""), "</p>", "");
    Fuzz::require(inner.find_first_of("<>\"'") == std::string::npos,
                  "a message brings no markup but its paragraphs");
    return 0;
}
