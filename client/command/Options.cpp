#include "client/command/Options.h"

#include "client/Failure.h"

#include <curl/curl.h>

#include <memory>

namespace Efictl {

namespace {

struct URLEnd {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using URL = std::unique_ptr<CURLU, URLEnd>;

URL parseURL(const std::string& text) {
    URL url(curl_url());
    if (url == nullptr || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) {
        return nullptr;
    }
    return url;
}

// Returns a part of the address; empty if there is none.
std::string partOf(const URL& url, CURLUPart part) {
    char* text = nullptr;
    const CURLUcode error = curl_url_get(url.get(), part, &text, 0);
    const std::string copy = error == CURLUE_OK && text != nullptr ? text : "";
    curl_free(text);
    return copy;
}

bool isThisMachine(const std::string& host) {
    return host == "localhost" || host == "[::1]" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == std::string::npos);
}

}  // namespace

std::string boardAddress(const Options& options) {
    if (options.board.empty()) {
        throw Failure(ExitCode::USAGE,
                      "No board is given. Give one with --board or in EFICTL_BOARD.");
    }
    const bool hasScheme = options.board.find("://") != std::string::npos;
    const URL url = parseURL((hasScheme ? "" : "https://") + options.board);
    const std::string wrong = "The address of the board is not of the form https://name:port/.";
    if (url == nullptr) {
        throw Failure(ExitCode::USAGE, wrong);
    }
    const std::string scheme = partOf(url, CURLUPART_SCHEME);
    const std::string host = partOf(url, CURLUPART_HOST);
    const std::string port = partOf(url, CURLUPART_PORT);
    const std::string path = partOf(url, CURLUPART_PATH);
    const bool isMore = !partOf(url, CURLUPART_USER).empty() ||
                        !partOf(url, CURLUPART_PASSWORD).empty() ||
                        !partOf(url, CURLUPART_QUERY).empty() ||
                        !partOf(url, CURLUPART_FRAGMENT).empty() || path != "/";
    if ((scheme != "https" && scheme != "http") || host.empty() || isMore) {
        throw Failure(ExitCode::USAGE, wrong + " It must not contain a user or a password.");
    }
    if (scheme == "http" && !isThisMachine(host) && !options.insecure) {
        throw Failure(ExitCode::USAGE,
                      "http:// would send the password where others can read it. "
                      "Use https://, or --insecure if that is acceptable.");
    }
    return scheme + "://" + host + (port.empty() ? "" : ":" + port);
}

std::string hostIn(const std::string& address) {
    const URL url = parseURL(address);
    return url == nullptr ? "" : partOf(url, CURLUPART_HOST);
}

}  // namespace Efictl
