// The checks before a request is handled. The lines of an input are the method, Sec-Fetch-Site,
// Origin, Host, the query, Sec-Fetch-Mode and Sec-Fetch-Dest.

#include "platform/host/web/requestChecks.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;
using Host::RequestVerdict;

namespace {

// Takes a line, cut at a NUL as in an environment variable.
std::string takeVariable(std::string_view& rest) {
    const std::string line = Fuzz::takeLine(rest);
    return line.substr(0, line.find('\0'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Fuzz::textOf(data, size);
    std::string_view rest = input;
    const std::string method = takeVariable(rest);
    const std::string site = takeVariable(rest);
    const std::string origin = takeVariable(rest);
    const std::string host = takeVariable(rest);
    const std::string query = takeVariable(rest);
    const std::string mode = takeVariable(rest);
    const std::string destination = takeVariable(rest);
    Fuzz::setVariable("QUERY_STRING", query);
    Fuzz::setVariable("REQUEST_METHOD", method);
    Fuzz::setVariable("HTTP_SEC_FETCH_SITE", site);
    Fuzz::setVariable("HTTP_SEC_FETCH_MODE", mode);
    Fuzz::setVariable("HTTP_SEC_FETCH_DEST", destination);
    Fuzz::setVariable("HTTP_ORIGIN", origin);
    Fuzz::setVariable("HTTP_HOST", host);

    const RequestVerdict verdict = Host::checkRequest();
    const bool known = method == "GET" || method == "HEAD" || method == "POST";
    Fuzz::require(known == (verdict != RequestVerdict::METHOD_NOT_ALLOWED),
                  "GET, HEAD and POST are the allowed methods");
    Fuzz::require(Host::isPost() == (method == "POST"), "only the method POST is a post");
    if (verdict == RequestVerdict::ACCEPTED && method == "POST") {
        Fuzz::require(site != "cross-site" && site != "same-site", "no other site can post");
        Fuzz::require(origin.empty() || (!host.empty() && origin.starts_with("http://")),
                      "an accepted origin is http and comes with a host");
    }
    if (verdict == RequestVerdict::ACCEPTED && site == "cross-site") {
        Fuzz::require(query.find('&') == std::string::npos,
                      "an accepted link from another site has at most one parameter");
        Fuzz::require(mode.empty() || mode == "navigate", "another site only opens pages");
    }
    return 0;
}
