#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// What a part of a multipart/form-data body says of itself.
struct PartHeader {
    std::string name;
    bool isFile = false;
    std::string fileName;
};

// Parses a part's header lines, each with its line break in front. Throws PException:
// REQUEST_MALFORMED for a folded line, a line without a colon, broken quotes, a part without a
// name; REQUEST_TOO_LARGE when a name is too long.
PartHeader parsePartHeader(std::string_view lines);

}  // namespace VeskLib::Host
