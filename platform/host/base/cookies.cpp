#include "platform/host/base/cookies.h"

#include "platform/host/base/Environment.h"

namespace VeskLib::Host {

bool isSecureRequest() {
    return readEnvironment("HTTPS") == "on";
}

std::string cookieName(const std::string& name) {
    return isSecureRequest() ? "__Host-" + name : name;
}

std::string makeCookie(const std::string& name, const std::string& value, long maxAgeSeconds) {
    std::string cookie = cookieName(name) + "=" + value + "; Path=/";
    if (maxAgeSeconds >= 0) {
        cookie += "; Max-Age=" + std::to_string(maxAgeSeconds);
    }
    cookie += "; HttpOnly; SameSite=Strict";
    return isSecureRequest() ? cookie + "; Secure" : cookie;
}

}  // namespace VeskLib::Host
