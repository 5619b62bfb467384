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
// REQUEST_MALFORMED for a folded line, a line without a colon, a part without a name;
// REQUEST_TOO_LARGE when a name is too long.
PartHeader parsePartHeader(std::string_view lines);

// Finds the parameter `name` (lower case) behind the value of a header, such as "boundary" in
// "multipart/form-data; boundary=x". Quotes around the value are taken off. False, with `value`
// unchanged, when there is none.
bool findParameter(std::string_view header, std::string_view name, std::string& value);

}  // namespace VeskLib::Host
