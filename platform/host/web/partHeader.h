#pragma once

#include <string>
#include <string_view>

namespace VeskLib::Host {

// The header of a part of a multipart/form-data body.
struct PartHeader {
    std::string name;
    bool isFile = false;
    std::string fileName;
};

// Parses a part's header lines, each preceded by its line break. Throws PException:
// REQUEST_MALFORMED for a folded line, a line without a colon, broken quotes or a part without a
// name; REQUEST_TOO_LARGE if a name is too long.
PartHeader parsePartHeader(std::string_view lines);

}  // namespace VeskLib::Host
