#pragma once

#include "platform/host/html/TextBuffer.h"

#include <ios>
#include <streambuf>
#include <string>

namespace VeskLib::Host {

// Collects what is printed to std::cout, and sends it as one HTTP response over the CGI interface.
// Nothing of the page reaches the server before send(), which writes header and body in one piece.
//
// Every response has Content-Length, no-store and nosniff, and the headers that keep the page out
// of foreign frames. During the object's life, printing throws if memory is exhausted, so that no
// page has gaps. The constructor makes the process ignore SIGPIPE and SIGXFSZ.
class Response {
public:
    static constexpr const char* HTML_CONTENT = "text/html; charset=UTF-8";

    Response();
    Response(const Response&) = delete;
    Response& operator=(const Response&) = delete;
    ~Response();

    // Sets the status, which is 200 by default. The reason phrase is added.
    void setStatus(int status);

    // Sets the content type, which is HTML_CONTENT by default.
    void setContentType(const std::string& contentType);

    // Adds a header, unless `name` or `value` contains a line break.
    void addHeader(const std::string& name, const std::string& value);

    // Discards the printed text, the added headers and the content type.
    void discard();

    // Makes the response a fixed page of an internal error, whatever was or will be printed. For a
    // process without the memory for an error page; allocates none itself.
    void useLastResort() noexcept;

    // Writes the response to standard output, without the body if the request's method is HEAD.
    // Must be called only once. Returns false if the response could not be written completely. A
    // response that cannot be built is replaced by the one of useLastResort().
    bool send() noexcept;

private:
    bool sendPage() const;

    bool lastResort = false;
    int status = 200;
    std::string contentType;  // empty for HTML_CONTENT, so that the constructor does not allocate
    std::string headers;
    TextBuffer body;
    std::streambuf* original;
    std::ios::iostate originalExceptions;
};

}  // namespace VeskLib::Host
