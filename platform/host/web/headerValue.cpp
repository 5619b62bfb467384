#include "platform/host/web/headerValue.h"

#include "platform/host/base/platformException.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace VeskLib::Host {

namespace {

[[noreturn]] void refuseQuotes() {
    throw makePlatformException(REQUEST_MALFORMED, "The quotes of a header are broken");
}

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

// Removes a quoted text from the start of `rest`, which begins after the opening quote, and returns
// it unquoted. Browsers do not escape backslashes, so one is literal unless a quote or another
// backslash follows.
std::string takeQuoted(std::string_view& rest) {
    std::string text;
    std::size_t i = 0;
    for (; i < rest.size() && rest[i] != '"'; ++i) {
        const bool escape =
            rest[i] == '\\' && i + 1 < rest.size() && (rest[i + 1] == '"' || rest[i + 1] == '\\');
        i += escape ? 1 : 0;
        text += rest[i];
    }
    if (i == rest.size()) {
        refuseQuotes();
    }
    rest.remove_prefix(i + 1);
    return text;
}

// Removes the text up to the next ";" from the start of `rest` and returns it trimmed.
std::string_view takePlain(std::string_view& rest) {
    const std::string_view text = rest.substr(0, rest.find(';'));
    rest.remove_prefix(text.size());
    return trim(text);
}

std::string takeValue(std::string_view& rest) {
    if (!rest.starts_with('"')) {
        const std::string_view plain = takePlain(rest);
        if (plain.find('"') != std::string_view::npos) {
            refuseQuotes();
        }
        return std::string(plain);
    }
    rest.remove_prefix(1);
    std::string text = takeQuoted(rest);
    if (!takePlain(rest).empty()) {
        refuseQuotes();
    }
    return text;
}

// Removes "name=value" from the start of `rest`, which begins after a ";".
void takeParameter(std::string_view& rest, std::string_view& name, std::string& value) {
    const std::size_t nameEnd = std::min(rest.find_first_of("=;"), rest.size());
    name = trim(rest.substr(0, nameEnd));
    rest.remove_prefix(nameEnd);
    value.clear();
    if (rest.starts_with('=')) {
        rest.remove_prefix(1);
        value = takeValue(rest);
    }
}

}  // namespace

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

std::string_view trim(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

std::string_view mainValue(std::string_view header) {
    return trim(header.substr(0, header.find(';')));
}

bool isMediaType(std::string_view contentType, std::string_view type) {
    return equalsIgnoringCase(mainValue(contentType), type);
}

bool findParameter(std::string_view header, std::string_view name, std::string& value) {
    std::optional<std::string> found;
    std::string_view rest = header.substr(std::min(header.find(';'), header.size()));
    // Continues after a match, so that a header with a malformed rest is refused.
    while (!rest.empty()) {
        rest.remove_prefix(1);
        std::string_view foundName;
        std::string text;
        takeParameter(rest, foundName, text);
        if (!found && equalsIgnoringCase(foundName, name)) {
            found = std::move(text);
        }
    }
    if (found) {
        value = std::move(*found);
    }
    return found.has_value();
}

}  // namespace VeskLib::Host
