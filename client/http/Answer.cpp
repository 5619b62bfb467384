#include "client/http/Answer.h"

#include "platform/host/web/headerValue.h"

#include <algorithm>

namespace Efictl {

namespace {

using VeskLib::Host::equalsIgnoringCase;
using VeskLib::Host::trim;

// The limit for all header lines together, including those of interim responses and trailers.
const std::size_t LARGEST_HEADER = 64 * 1024;

}  // namespace

bool Answer::takeHeader(std::string_view line) {
    headerSize += line.size();
    if (headerSize > LARGEST_HEADER) {
        tooLarge = true;
        return false;
    }
    if (line.starts_with("HTTP/")) {
        // A status line: any response before it was an interim one.
        response.contentType.clear();
        return true;
    }
    line = line.substr(0, line.find_last_not_of("\r\n") + 1);
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos &&
        equalsIgnoringCase(line.substr(0, colon), "content-type")) {
        response.contentType = trim(line.substr(colon + 1));
    }
    return true;
}

bool Answer::takeBody(std::string_view bytes) {
    if (bytes.size() > limit - response.body.size()) {
        tooLarge = true;
        return false;
    }
    if (response.body.capacity() - response.body.size() < bytes.size()) {
        // A vector that grows by itself could take up to twice the limit.
        response.body.reserve(std::min(
            limit, std::max(2 * response.body.size(), response.body.size() + bytes.size())));
    }
    response.body.insert(response.body.end(), bytes.begin(), bytes.end());
    return true;
}

}  // namespace Efictl
