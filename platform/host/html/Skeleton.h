#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Host {

// The position and the reason of a syntax error. Line and column start at 1.
struct SkeletonError {
    unsigned int line;
    unsigned int column;
    std::string problem;
};

// A parsed skeleton. Its marks:
//
//   {{name}}               what the component of that name prints
//   {{message 33-1028}}    message 33 of the catalogue with its code 1028 ("-0" for no code)
//   {{text 9001}}          a caption of the catalogue, in the request's language
//   {{language}}           the request's language tag, such as "en"
//   {{nonce}}              the attribute "nonce" that a <script> needs to run
//   {{staged_file}}        the identity of the staged file that the page shows; empty without one
//   {{if name}}...{{end}}  printed only when there is a component of that name; may be nested
//   {{unless name}}...{{end}}  printed only when there is none
//
// The first three take "|script" before "}}" to be safe inside a JavaScript string, and
// "|attribute" to be safe inside a quoted attribute value.
//
// A name is made of letters, digits and "_". A name that is neither in the map nor shared (see
// sharedComponents.h) prints nothing.
// Anything else between {{ and }} is malformed.
class Skeleton {
public:
    enum class Kind {
        PLAIN,
        COMPONENT,
        MESSAGE,
        CAPTION,
        LANGUAGE,
        NONCE,
        STAGED_FILE,
        IF,
        UNLESS
    };
    enum class Place { MARKUP, SCRIPT, ATTRIBUTE };

    struct Piece {
        Kind kind = Kind::PLAIN;
        Place place = Place::MARKUP;
        std::string_view text;  // plain text, or a component's name
        int number = 0;         // of a message or a caption
        int code = 0;           // of a message
        std::size_t next = 0;   // of a condition: the piece after its end
    };

    // Throws SkeletonError when a mark is malformed.
    explicit Skeleton(std::string source);
    Skeleton(const Skeleton&) = delete;
    Skeleton& operator=(const Skeleton&) = delete;

    // Prints to std::cout.
    void print(const std::map<std::string, Gui::HTMLComponent*>& components) const;

    const std::vector<Piece>& getPieces() const { return pieces; }

private:
    void parse();
    bool parseCondition(Kind kind, std::string_view name, std::vector<std::size_t>& openConditions);
    bool parseMark(std::string_view mark, std::vector<std::size_t>& openConditions);
    bool parseWord(std::string_view word, std::string_view ending,
                   std::vector<std::size_t>& openConditions);
    [[noreturn]] void fail(std::size_t offset, const char* problem) const;

    std::string source;
    std::vector<Piece> pieces;
};

}  // namespace VeskLib::Host
