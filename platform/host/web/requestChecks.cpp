#include "platform/host/web/requestChecks.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/cookies.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/web/HostName.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace VeskLib::Host {

namespace {

const std::string_view FUNCTION_FIELD = "functionID=";

// Guards against DNS rebinding, by which another site's page could reach the board under a name of
// its own. Browsers always send Host, so a client that does not is not a browser.
bool isForThisBoard() {
    const std::string host = readEnvironment("HTTP_HOST");
    if (host.empty()) {
        return readEnvironment("HTTP_ORIGIN").empty() &&
               readEnvironment("HTTP_SEC_FETCH_SITE").empty();
    }
    HostName name;
    return parseHostName(host, isSecureRequest(), name) &&
           (isLoopbackName(name.name) ||
            std::ranges::find(boardProperties().hosts, name.name) != boardProperties().hosts.end());
}

// A page cannot set or change this header. A client that does not send it is an old browser or not
// a browser.
bool isFetchedFromThisSite() {
    const std::string site = readEnvironment("HTTP_SEC_FETCH_SITE");
    return site.empty() || site == "same-origin" || site == "none";
}

// The same applies to this header.
bool hasOwnOrigin() {
    const std::string origin = readEnvironment("HTTP_ORIGIN");
    if (origin.empty()) {
        return true;
    }
    const std::string_view scheme = isSecureRequest() ? "https://" : "http://";
    HostName from;
    HostName to;
    return origin.starts_with(scheme) &&
           parseHostName(std::string_view(origin).substr(scheme.size()), isSecureRequest(), from) &&
           parseHostName(readEnvironment("HTTP_HOST"), isSecureRequest(), to) && from == to;
}

// Returns true if a browser follows a link, rather than loading a picture, a frame or data for
// another site's page.
bool isNavigation() {
    const std::string mode = readEnvironment("HTTP_SEC_FETCH_MODE");
    const std::string destination = readEnvironment("HTTP_SEC_FETCH_DEST");
    return (mode.empty() || mode == "navigate") &&
           (destination.empty() || destination == "document");
}

// Returns true if the query is empty or a function number, as in a bookmark or another site's link.
bool isPlainLink() {
    const std::string query = readEnvironment("QUERY_STRING");
    return query.empty() ||
           (query.starts_with(FUNCTION_FIELD) &&
            query.find_first_not_of("0123456789", FUNCTION_FIELD.size()) == std::string::npos);
}

}  // namespace

RequestVerdict checkRequest() {
    const std::string method = readEnvironment("REQUEST_METHOD");
    if (method != "GET" && method != "HEAD" && method != "POST") {
        return RequestVerdict::METHOD_NOT_ALLOWED;
    }
    if (!isForThisBoard()) {
        return RequestVerdict::MISDIRECTED;
    }
    const bool allowed = isPost() ? isFetchedFromThisSite() && hasOwnOrigin()
                                  : isFetchedFromThisSite() || (isNavigation() && isPlainLink());
    return allowed ? RequestVerdict::ACCEPTED : RequestVerdict::CROSS_SITE;
}

bool isPost() {
    return readEnvironment("REQUEST_METHOD") == "POST";
}

bool isHead() {
    return readEnvironment("REQUEST_METHOD") == "HEAD";
}

}  // namespace VeskLib::Host
