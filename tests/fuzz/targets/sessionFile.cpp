// A session file with any content. "NOW" in an input is replaced by the current time, "SUM" by the
// SHA-256 sum of the token.

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/sha256.h"
#include "platform/host/session/Session.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>

#include <sys/stat.h>
#include <unistd.h>

using namespace VeskLib;

namespace {

const std::string IDENTIFIER = "0123456789abcdef";
const std::string TOKEN = "00112233445566778899aabbccddeeff";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    const std::time_t now = std::time(nullptr);
    const std::string content =
        Fuzz::replaceAll(Fuzz::replaceAll(Fuzz::textOf(data, size), "NOW", std::to_string(now)),
                         "SUM", Host::sha256Hex(TOKEN));
    const std::string path = getCGIPath(Host::SESSION_FOLDER) + "/" + IDENTIFIER;
    Test::writeText(path, content);
    ::chmod(path.c_str(), 0600);

    Host::Session session;
    if (Host::findSession(IDENTIFIER + "-" + TOKEN, session)) {
        Fuzz::require(content.find("token_sha256=" + Host::sha256Hex(TOKEN)) != std::string::npos,
                      "a session is found only if its file has the sum of the token");
        Fuzz::require(session.identifier == IDENTIFIER && session.token == TOKEN,
                      "the session is the one that was requested");
        Fuzz::require(session.created >= now - Host::SESSION_LIFE_SECONDS,
                      "an expired session is not found");
        Fuzz::require(session.user.find('\n') == std::string::npos, "a value is one line");
        Fuzz::require(::access(path.c_str(), F_OK) == 0, "the file of a valid session is kept");
    } else {
        Fuzz::require(session.user.empty() && session.identifier.empty(),
                      "a failure leaves the session unchanged");
    }
    ::unlink(path.c_str());
    return 0;
}
