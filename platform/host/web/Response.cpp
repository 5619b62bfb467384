#include "platform/host/web/Response.h"

#include "platform/host/base/Environment.h"
#include "platform/host/base/scriptNonce.h"
#include "platform/host/base/standardDescriptors.h"
#include "platform/host/base/writeWhole.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string_view>

namespace VeskLib::Host {

namespace {

// Most pages are no larger, so that the buffer is not reallocated while they are printed.
const std::size_t USUAL_PAGE = 8 * 1024;

const char* const FIXED_HEADERS =
    "Cache-Control: no-store\r\n"
    "X-Content-Type-Options: nosniff\r\n"
    "Referrer-Policy: same-origin\r\n"
    "Content-Security-Policy: default-src 'none'; style-src 'self'; img-src 'self'; "
    "form-action 'self'; base-uri 'none'; frame-ancestors 'none'; script-src 'self'";

// Returns the rest of the policy's last directive, script-src.
std::string scriptSource() {
    return hasScriptNonce() ? " 'nonce-" + scriptNonce() + "'" : "";
}

const char* reasonPhrase(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 303:
            return "See Other";
        case 400:
            return "Bad Request";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 408:
            return "Request Timeout";
        case 413:
            return "Content Too Large";
        case 421:
            return "Misdirected Request";
        case 429:
            return "Too Many Requests";
        case 503:
            return "Service Unavailable";
        default:
            return "Internal Server Error";
    }
}

bool hasLineBreak(const std::string& text) {
    return text.find_first_of("\r\n") != std::string::npos;
}

// In English only, because the catalogue and the skeleton may not be readable.
const char LAST_RESORT[] =
    "Status: 500 Internal Server Error\r\n"
    "Content-Type: text/html; charset=UTF-8\r\n"
    "Cache-Control: no-store\r\n"
    "X-Content-Type-Options: nosniff\r\n"
    "Content-Security-Policy: default-src 'none'; frame-ancestors 'none'\r\n"
    "Content-Length: 305\r\n"
    "\r\n";
const char LAST_RESORT_PAGE[] =
    "<!DOCTYPE html><html lang=\"en\"><head><title>Internal error</title></head><body>"
    "<h1>Internal error</h1><p role=\"alert\">The board has no memory left, and it is not certain "
    "how far the request went. Look at the state of the partitions before you try again; if it "
    "fails again, call support.</p></body></html>\n";
static_assert(sizeof LAST_RESORT_PAGE - 1 == 305, "Content-Length of the last resort");

bool sendLastResort() {
    const char* const method = std::getenv("REQUEST_METHOD");
    const bool withBody = method == nullptr || std::strcmp(method, "HEAD") != 0;
    return writeWhole(STDOUT_FILENO, LAST_RESORT, withBody ? LAST_RESORT_PAGE : "");
}

}  // namespace

Response::Response()
    : original(std::cout.rdbuf(&body)), originalExceptions(std::cout.exceptions()) {
    std::cout.exceptions(std::ios::badbit);
    // Writing to a closed connection or beyond the limit of a file's size then fails with an error,
    // and does not kill the process.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    occupyStandardDescriptors();
    try {
        body.reserve(USUAL_PAGE);
    } catch (const std::bad_alloc&) {
        // The buffer grows when it is printed to, or throws then.
    }
}

Response::~Response() {
    // rdbuf() also clears the state, so that restoring the mask does not throw.
    std::cout.rdbuf(original);
    std::cout.exceptions(originalExceptions);
}

void Response::setStatus(int newStatus) {
    status = newStatus;
}

void Response::setContentType(const std::string& newContentType) {
    if (!hasLineBreak(newContentType)) {
        contentType = newContentType;
    }
}

void Response::addHeader(const std::string& name, const std::string& value) {
    if (!hasLineBreak(name) && !hasLineBreak(value)) {
        headers += name + ": " + value + "\r\n";
    }
}

void Response::discard() {
    body.clear();
    headers.clear();
    contentType.clear();
    std::cout.clear();
}

void Response::useLastResort() noexcept {
    lastResort = true;
}

bool Response::send() noexcept {
    try {
        return lastResort ? sendLastResort() : sendPage();
    } catch (const std::exception&) {
        // Nothing has been written: writing is the last step and allocates no memory.
        return sendLastResort();
    }
}

bool Response::sendPage() const {
    const std::string_view page = body.view();
    const std::string header =
        "Status: " + std::to_string(status) + " " + reasonPhrase(status) +
        "\r\nContent-Type: " + (contentType.empty() ? HTML_CONTENT : contentType) + "\r\n" +
        FIXED_HEADERS + scriptSource() + "\r\n" + headers +
        "Content-Length: " + std::to_string(page.size()) + "\r\n\r\n";
    const bool withBody = readEnvironment("REQUEST_METHOD") != "HEAD";
    return writeWhole(STDOUT_FILENO, header, withBody ? page : "");
}

}  // namespace VeskLib::Host
