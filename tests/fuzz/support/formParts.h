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

// `text` between quotes, as a part's header holds it.
std::string quoted(const std::string& text);

// A part's header lines, each with its line break in front.
std::string makeHeader(const FormPart& part);

// A boundary that none of the contents holds.
std::string makeBoundary(const std::vector<FormPart>& parts);

// The body that holds `parts`.
std::string makeBody(const std::vector<FormPart>& parts, const std::string& boundary);

}  // namespace VeskLib::Fuzz
