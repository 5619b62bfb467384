// The cookies of a request, and the session that they name. "IDENTIFIER" and "TOKEN" in an input
// are replaced by those of an existing session.

#include "platform/host/base/Environment.h"
#include "platform/host/session/Session.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

namespace {

const Host::Session& livingSession() {
    static const Host::Session SESSION = Host::startSession("operator");
    return SESSION;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    const Host::Session& living = livingSession();
    std::string header = Fuzz::textOf(data, size);
    header = Fuzz::replaceAll(header, "IDENTIFIER", living.identifier);
    header = Fuzz::replaceAll(header, "TOKEN", living.token);
    Fuzz::setVariable("HTTP_COOKIE", header);

    const std::string value = Host::readCookie("session");
    Fuzz::require(header.find(value) != std::string::npos, "a cookie is part of the header");
    Fuzz::require(value.find(';') == std::string::npos, "a cookie ends before the next one");

    const std::string identifier = Host::identifierOf(value);
    Fuzz::require(identifier.empty() || (Host::isSessionIdentifier(identifier) &&
                                         value.starts_with(identifier + "-")),
                  "an identifier is well-formed or empty");

    Host::Session found;
    const bool isLogin = Host::findSession(value, found);
    Fuzz::require(isLogin == (value == living.cookieValue()),
                  "only the complete cookie of an existing session is a login");
    Fuzz::require(isLogin ? found.user == "operator" : found.user.empty(),
                  "a login is that of its user");
    Fuzz::require(Host::findSession(living.cookieValue(), found),
                  "a cookie without the token does not end a session");
    return 0;
}
