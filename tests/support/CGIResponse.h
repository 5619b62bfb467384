#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VeskLib::Test {

// A response as a web server reads it from a CGI program.
struct CGIResponse {
    std::string status;  // "200 OK"
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    // The value of a header; empty when there is none, a test failure when there are several.
    std::string header(std::string_view name) const;
};

// Reads a response and holds it against the rules that every response keeps: headers that end in
// CR LF, no line that is no header, and a Content-Length that is the body's, unless `headOnly`.
CGIResponse parseResponse(const std::string& output, bool headOnly = false);

}  // namespace VeskLib::Test
