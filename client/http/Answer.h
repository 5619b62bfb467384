#pragma once

#include "client/http/Transport.h"

#include <cstddef>
#include <string_view>

namespace Efictl {

// Collects the header lines and the body of a response, within limits.
class Answer {
public:
    Answer(Response& response, std::size_t limit) : response(response), limit(limit) {}

    // Both return false if the response is too large.
    bool takeHeader(std::string_view line);
    bool takeBody(std::string_view bytes);

    bool isTooLarge() const { return tooLarge; }

private:
    Response& response;
    const std::size_t limit;
    std::size_t headerSize = 0;
    bool tooLarge = false;
};

}  // namespace Efictl
