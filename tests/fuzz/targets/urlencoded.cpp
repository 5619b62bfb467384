// A query string or an urlencoded body, in one piece and in many.

#include "platform/host/web/UrlencodedReader.h"

#include "board/web/utf8.h"
#include "platform/host/web/FormLimits.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <VeskLib/PException.h>

#include <map>

using namespace VeskLib;
namespace FormLimits = Host::FormLimits;

namespace {

using Fields = std::map<std::string, std::string>;

// Reads the fields in `text`. Returns false if it is rejected.
bool read(std::string_view text, std::size_t largestPiece, Fields& fields) {
    Host::UrlencodedReader reader(fields);
    try {
        Fuzz::inPieces(text, largestPiece,
                       [&reader](std::string_view piece) { reader.feed(piece); });
        reader.finish();
    } catch (const PException&) {
        return false;
    }
    return true;
}

void requireLimits(const Fields& fields) {
    Fuzz::require(fields.size() <= FormLimits::FIELDS, "the number of fields is within the limit");
    for (const auto& [name, value] : fields) {
        Fuzz::require(name.size() <= FormLimits::NAME_LENGTH, "a name is within its limit");
        Fuzz::require(value.size() <= FormLimits::VALUE_LENGTH, "a value is within its limit");
    }
}

// Returns a query string with these fields.
std::string encode(const Fields& fields) {
    std::string text;
    for (const auto& [name, value] : fields) {
        text += Board::percentEncode(name) + "=" + Board::percentEncode(value) + "&";
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    Fields whole;
    Fields pieced;
    const bool taken = read(text, size + 1, whole);
    Fuzz::require(read(text, 9, pieced) == taken, "acceptance does not depend on the pieces");
    Fuzz::require(pieced == whole, "the fields do not depend on the pieces");
    requireLimits(whole);
    if (taken) {
        Fields again;
        Fuzz::require(read(encode(whole), 100, again) && again == whole,
                      "fields that are sent again are read unchanged");
    }
    return 0;
}
