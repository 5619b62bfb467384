#include "platform/host/base/Environment.h"

#include <cstdlib>
#include <string_view>

namespace VeskLib::Host {

std::string readEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::vector<std::string> readCookies(const std::string& name) {
    std::vector<std::string> values;
    const std::string cookies = readEnvironment("HTTP_COOKIE");
    std::string_view rest = cookies;
    while (!rest.empty()) {
        const std::size_t end = rest.find(';');
        std::string_view pair = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::size_t start = pair.find_first_not_of(" \t");
        pair.remove_prefix(start == std::string_view::npos ? pair.size() : start);
        if (pair.size() > name.size() && pair[name.size()] == '=' && pair.starts_with(name)) {
            values.emplace_back(pair.substr(name.size() + 1));
        }
    }
    return values;
}

std::string readCookie(const std::string& name) {
    const std::vector<std::string> values = readCookies(name);
    return values.empty() ? std::string() : values.front();
}

}  // namespace VeskLib::Host
