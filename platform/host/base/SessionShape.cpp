#include "platform/host/base/SessionShape.h"

#include <algorithm>
#include <string_view>

namespace VeskLib::Host {

namespace {

const std::size_t IDENTIFIER_LENGTH = 16;
const std::size_t TOKEN_LENGTH = 32;

bool isHexadecimal(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

}  // namespace

bool isCookieValue(const std::string& text) {
    if (text.size() != IDENTIFIER_LENGTH + 1 + TOKEN_LENGTH || text[IDENTIFIER_LENGTH] != '-') {
        return false;
    }
    const std::string_view view = text;
    return isHexadecimal(view.substr(0, IDENTIFIER_LENGTH)) &&
           isHexadecimal(view.substr(IDENTIFIER_LENGTH + 1));
}

bool isSessionIdentifier(const std::string& text) {
    return text.size() == IDENTIFIER_LENGTH && isHexadecimal(text);
}

std::string identifierOf(const std::string& cookieValue) {
    return isCookieValue(cookieValue) ? cookieValue.substr(0, IDENTIFIER_LENGTH) : std::string();
}

}  // namespace VeskLib::Host
