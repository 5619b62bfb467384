#include "platform/host/web/requestChecks.h"

#include "platform/host/base/Environment.h"

#include <string>

namespace VeskLib::Host {

namespace {

// Both headers are written by the browser and cannot be set by a page. A client that sends
// neither is no browser and carries no cookie that it was not given by hand.
bool isFromThisSite() {
    const std::string site = readEnvironment("HTTP_SEC_FETCH_SITE");
    if (!site.empty() && site != "same-origin" && site != "none") {
        return false;
    }
    const std::string origin = readEnvironment("HTTP_ORIGIN");
    if (origin.empty()) {
        return true;
    }
    const std::string host = readEnvironment("HTTP_HOST");
    const std::size_t hostStart = origin.find("://");
    return !host.empty() && hostStart != std::string::npos && origin.substr(hostStart + 3) == host;
}

}  // namespace

RequestVerdict checkRequest() {
    const std::string method = readEnvironment("REQUEST_METHOD");
    if (method != "GET" && method != "HEAD" && method != "POST") {
        return RequestVerdict::METHOD_NOT_ALLOWED;
    }
    return isPost() && !isFromThisSite() ? RequestVerdict::CROSS_SITE : RequestVerdict::ACCEPTED;
}

bool isPost() {
    return readEnvironment("REQUEST_METHOD") == "POST";
}

bool isHead() {
    return readEnvironment("REQUEST_METHOD") == "HEAD";
}

}  // namespace VeskLib::Host
