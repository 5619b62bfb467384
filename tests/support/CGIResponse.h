#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VeskLib::Test {

// A response of a CGI program, as the web server reads it.
struct CGIResponse {
    std::string status;  // "200 OK"
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    // Returns the value of a header, or "" if it is absent. Fails the test if it occurs more than
    // once.
    std::string header(std::string_view name) const;
};

// Parses a response. Fails the test if a header line is malformed or does not end in CR LF, or if
// Content-Length is not the size of the body. With `headOnly`, expects an empty body instead.
CGIResponse parseResponse(const std::string& output, bool headOnly = false);

}  // namespace VeskLib::Test
