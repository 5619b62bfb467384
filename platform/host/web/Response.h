#pragma once

#include "platform/host/html/TextBuffer.h"

#include <ios>
#include <streambuf>
#include <string>

namespace VeskLib::Host {

// Collects what is printed to std::cout, and sends it as one HTTP response over the CGI
// interface. While it lives, nothing of the page reaches the server; send() writes header and
// body in one piece.
//
// Every response carries Content-Length, no-store and nosniff, and the headers that keep the page
// out of foreign frames. While it lives, what cannot be printed for lack of memory is an exception
// and no gap in the page. The process ignores SIGPIPE and SIGXFSZ from then on.
class Response {
public:
    static constexpr const char* HTML_CONTENT = "text/html; charset=UTF-8";

    Response();
    Response(const Response&) = delete;
    Response& operator=(const Response&) = delete;
    ~Response();

    // 200 unless set; the reason phrase is added.
    void setStatus(int status);

    // HTML_CONTENT unless set.
    void setContentType(const std::string& contentType);

    // `name` and `value` must hold no line break; a header with one is left out.
    void addHeader(const std::string& name, const std::string& value);

    // Forgets what was printed and the headers added.
    void discard();

    // From now on the response is a fixed page of an internal error, whatever was or will be
    // printed: for a process that has no memory left even for an error page. Takes none itself.
    void useLastResort() noexcept;

    // Writes the response to standard output; without the body when the request's method is
    // HEAD. False when it could not be written whole. Called once. A response that cannot be put
    // together becomes the one of useLastResort().
    bool send() noexcept;

private:
    bool sendPage() const;

    bool lastResort = false;
    int status = 200;
    std::string contentType;  // empty for HTML_CONTENT, so that construction takes no memory
    std::string headers;
    TextBuffer body;
    std::streambuf* original;
    std::ios::iostate originalExceptions;
};

}  // namespace VeskLib::Host
