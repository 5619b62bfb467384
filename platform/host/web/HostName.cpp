#include "platform/host/web/HostName.h"

#include "platform/host/channel/hostNames.h"

#include <algorithm>
#include <charconv>

namespace VeskLib::Host {

namespace {

const unsigned int HTTP_PORT = 80;
const unsigned int HTTPS_PORT = 443;
const unsigned int LAST_PORT = 65535;

bool readPort(std::string_view text, unsigned int& port) {
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, port);
    return result.ec == std::errc() && result.ptr == end && port <= LAST_PORT;
}

}  // namespace

bool parseHostName(std::string_view text, bool secure, HostName& host) {
    // An IPv6 address has its colons between brackets.
    const std::size_t nameEnd =
        text.starts_with('[') ? text.find(']') + 1 : std::min(text.find(':'), text.size());
    const std::string_view rest = text.substr(nameEnd);
    host.name = normaliseHostName(text.substr(0, nameEnd));
    host.port = secure ? HTTPS_PORT : HTTP_PORT;
    return !host.name.empty() &&
           (rest.empty() || (rest.starts_with(':') && readPort(rest.substr(1), host.port)));
}

bool isLoopbackName(const std::string& name) {
    return std::ranges::find(loopbackNames(), name) != loopbackNames().end();
}

}  // namespace VeskLib::Host
