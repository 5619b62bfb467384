#include "client/http/Answer.h"

#include <algorithm>
#include <cctype>

namespace Efictl {

namespace {

// Of all header lines together, with those of interim answers and trailers.
const std::size_t LARGEST_HEADER = 64 * 1024;

bool isSpace(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool isNamed(std::string_view name, std::string_view wanted) {
    return std::equal(name.begin(), name.end(), wanted.begin(), wanted.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == b;
    });
}

}  // namespace

bool Answer::takeHeader(std::string_view line) {
    headerSize += line.size();
    if (headerSize > LARGEST_HEADER) {
        tooLarge = true;
        return false;
    }
    if (line.starts_with("HTTP/")) {
        // Another answer begins: the one before was an interim one.
        response.contentType.clear();
        response.location.clear();
        return true;
    }
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos) {
        const std::string_view name = line.substr(0, colon);
        const std::string_view value = trim(line.substr(colon + 1));
        if (isNamed(name, "content-type")) {
            response.contentType = value;
        } else if (isNamed(name, "location")) {
            response.location = value;
        }
    }
    return true;
}

bool Answer::takeBody(std::string_view bytes) {
    if (bytes.size() > limit - response.body.size()) {
        tooLarge = true;
        return false;
    }
    if (response.body.capacity() - response.body.size() < bytes.size()) {
        // Not twice the limit, as a vector that grows by itself may take.
        response.body.reserve(std::min(
            limit, std::max(2 * response.body.size(), response.body.size() + bytes.size())));
    }
    response.body.insert(response.body.end(), bytes.begin(), bytes.end());
    return true;
}

}  // namespace Efictl
