// The skeletons of the pages, filled with components that print hostile markup.

#include "platform/host/html/Skeleton.h"

#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/printedBy.h"

#include <algorithm>
#include <iostream>

using namespace VeskLib;
using Host::Skeleton;

namespace {

class HostileComponent : public Gui::HTMLComponent {
public:
    void printHTML() const override { std::cout << "<script>\"'</script>"; }
    bool isError() const override { return false; }
};

// Requires that components are escaped, unless a mark prints one as markup.
void requireEscaped(const Skeleton& skeleton, const std::string& source,
                    const std::string& printed) {
    const auto& pieces = skeleton.getPieces();
    const bool raw = std::any_of(pieces.begin(), pieces.end(), [](const Skeleton::Piece& piece) {
        return piece.kind == Skeleton::Kind::COMPONENT && piece.place == Skeleton::Place::MARKUP;
    });
    if (!raw && source.find('<') == std::string::npos) {
        Fuzz::require(printed.find('<') == std::string::npos, "an escaped component is text");
    }
}

void requireSoundPieces(const Skeleton& skeleton, const std::string& source) {
    std::size_t plain = 0;
    for (const Skeleton::Piece& piece : skeleton.getPieces()) {
        plain += piece.text.size();
        const bool numbered =
            piece.kind == Skeleton::Kind::MESSAGE || piece.kind == Skeleton::Kind::CAPTION;
        Fuzz::require(!numbered || piece.number > 0, "texts are numbered from 1");
        Fuzz::require(piece.code >= 0, "a code is not negative");
        Fuzz::require(piece.next <= skeleton.getPieces().size(),
                      "a condition ends within the skeleton");
    }
    Fuzz::require(plain <= source.size(), "the pieces are no longer than the source");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    const std::string source = Fuzz::textOf(data, size);
    HostileComponent hostile;
    const std::map<std::string, Gui::HTMLComponent*> components = {{"a", &hostile}};
    try {
        const Skeleton skeleton(source);
        requireSoundPieces(skeleton, source);
        const std::string printed =
            Test::printedBy([&skeleton, &components] { skeleton.print(components); });
        // A mark prints a few dozen characters at most and is at least five characters long.
        Fuzz::require(printed.size() <= 200 * source.size(), "the length of the output is bounded");
        requireEscaped(skeleton, source, printed);
    } catch (const Host::SkeletonError& error) {
        const auto lines = 1 + std::count(source.begin(), source.end(), '\n');
        Fuzz::require(error.line >= 1 && error.line <= lines && error.column >= 1 &&
                          error.column <= source.size(),
                      "an error has a location in the source");
    }
    return 0;
}
