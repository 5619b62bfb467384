#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The value of a Host header, or of an Origin header after its scheme.
struct HostName {
    std::string name;  // as normaliseHostName() returns it
    unsigned int port = 0;

    bool operator==(const HostName&) const = default;
};

// Parses a name with or without a port. The default port is that of HTTP, or of HTTPS if `secure`.
// Returns false and leaves `host` unspecified if the text is malformed.
bool parseHostName(std::string_view text, bool secure, HostName& host);

bool isLoopbackName(const std::string& name);

}  // namespace VeskLib::Host
