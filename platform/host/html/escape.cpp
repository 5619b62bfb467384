#include "platform/host/html/escape.h"

namespace VeskLib::Host {

std::string escapeHTML(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
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
