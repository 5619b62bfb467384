// The cookies of a request, and the session that they name. "IDENTIFIER" and "TOKEN" in an input
// stand for those of a session that there is.

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
    Fuzz::require(header.find(value) != std::string::npos, "a cookie is what the browser sent");
    Fuzz::require(value.find(';') == std::string::npos, "a cookie ends where the next begins");

    const std::string identifier = Host::identifierOf(value);
    Fuzz::require(identifier.empty() || (Host::isSessionIdentifier(identifier) &&
                                         value.starts_with(identifier + "-")),
                  "an identifier has its shape, or there is none");

    Host::Session found;
    const bool isLogin = Host::findSession(value, found);
    Fuzz::require(isLogin == (value == living.cookieValue()),
                  "only the whole cookie of a living session is a login");
    Fuzz::require(isLogin ? found.user == "operator" : found.user.empty(),
                  "a login is its own user's");
    Fuzz::require(Host::findSession(living.cookieValue(), found),
                  "no cookie ends a session whose token it does not know");
    return 0;
}
