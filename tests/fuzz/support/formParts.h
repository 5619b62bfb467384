#pragma once

#include <string>
#include <vector>

namespace VeskLib::Fuzz {

struct FormPart {
    std::string name;
    bool isFile = false;
    std::string fileName;
    std::string content;

    bool operator==(const FormPart&) const = default;
};

// Returns `text` as a quoted string of a part's header.
std::string quoted(const std::string& text);

// Returns the header lines of a part, each preceded by its line break.
std::string makeHeader(const FormPart& part);

// Returns a boundary that does not occur in the contents.
std::string makeBoundary(const std::vector<FormPart>& parts);

// Returns a multipart body that contains `parts`.
std::string makeBody(const std::vector<FormPart>& parts, const std::string& boundary);

}  // namespace VeskLib::Fuzz
