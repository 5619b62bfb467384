#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

// A parsed skeleton. Its marks:
//
//   {{name}}            the component of that name, as it prints itself
//   {{name|script}}     the same, safe inside a JavaScript string
//   {{name|attribute}}  the same, safe inside a quoted attribute value
//   {{text 9001}}       a caption of the catalogue
//   {{if name}}...{{end}}  printed only when there is a component of that name; may be nested
//
// A name is made of letters, digits and "_". An unknown name prints nothing. Anything else between
// {{ and }} is malformed.
class Skeleton {
public:
    struct Piece {
        enum class Kind { TEXT, COMPONENT, SCRIPT, ATTRIBUTE, CAPTION, IF, END };
        Kind kind;
        std::string_view text;  // plain text or a name
        int number;             // a caption's number; for IF the index of its END
    };

    // Throws SkeletonError when a mark is malformed.
    explicit Skeleton(std::string source);

    // Prints to std::cout.
    void print(const std::map<std::string, Gui::HTMLComponent*>& components) const;

    const std::vector<Piece>& pieces() const { return parts; }

private:
    std::string source;
    std::vector<Piece> parts;
};

struct SkeletonError {
    unsigned int line;
    unsigned int column;
    std::string problem;
};

}  // namespace VeskLib::Host
