#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The value of a Host header, or what follows the scheme in an Origin header.
struct HostName {
    std::string name;  // as normaliseHostName() gives it
    unsigned int port = 0;

    bool operator==(const HostName&) const = default;
};

// Without a port in `text`, it is that of HTTP, or of HTTPS when `secure`. False, with `host`
// unspecified, when the text is no name with or without a port.
bool parseHostName(std::string_view text, bool secure, HostName& host);

bool isLoopbackName(const std::string& name);

}  // namespace VeskLib::Host
