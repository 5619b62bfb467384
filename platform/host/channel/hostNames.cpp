#include "platform/host/channel/hostNames.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace VeskLib::Host {

namespace {

const std::string_view NAME_CHARACTERS = "abcdefghijklmnopqrstuvwxyz0123456789-_.";

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return lower;
}

bool isDottedName(const std::string& name) {
    return !name.empty() && name.find_first_not_of(NAME_CHARACTERS) == std::string::npos &&
           !name.starts_with('.') && !name.ends_with('.') && name.find("..") == std::string::npos;
}

// Returns the address in the only form that browsers send, in brackets; empty if it is malformed.
std::string normaliseAddress(std::string_view text) {
    in6_addr address = {};
    char shape[INET6_ADDRSTRLEN];
    if (::inet_pton(AF_INET6, std::string(text).c_str(), &address) != 1 ||
        ::inet_ntop(AF_INET6, &address, shape, sizeof shape) == nullptr) {
        return {};
    }
    return "[" + std::string(shape) + "]";
}

}  // namespace

std::string normaliseHostName(std::string_view name) {
    if (name.size() > LONGEST_HOST_NAME) {
        return {};
    }
    if (name.starts_with('[') && name.ends_with(']')) {
        return normaliseAddress(name.substr(1, name.size() - 2));
    }
    if (name.find(':') != std::string_view::npos) {
        return normaliseAddress(name);
    }
    const std::string lower = lowerCase(name);
    return isDottedName(lower) ? lower : std::string();
}

const std::vector<std::string>& loopbackNames() {
    static const std::vector<std::string> NAMES = {"127.0.0.1", "[::1]", "localhost"};
    return NAMES;
}

}  // namespace VeskLib::Host
