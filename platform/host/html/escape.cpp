#include "platform/host/html/escape.h"

namespace VeskLib::Host {

namespace {

// What stands in a page for a character that would leave its place; empty for every other one.
std::string_view entityOf(char character) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

}  // namespace

std::string escapeHTML(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view entity = entityOf(text[i]);
        if (!entity.empty()) {
            escaped.append(text, copied, i - copied).append(entity);
            copied = i + 1;
        }
    }
    return escaped.append(text, copied);
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
