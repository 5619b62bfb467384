// The header lines and the body of an answer, as efictl receives them.

#include "client/http/Answer.h"
#include "tests/fuzz/support/require.h"

#include <algorithm>

using namespace Efictl;
using namespace VeskLib;

namespace {

const std::size_t LIMIT = 512;  // of the body

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Response response;
    Answer answer(response, LIMIT);
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        if (!answer.takeHeader(text.substr(start, end - start))) {
            Fuzz::require(answer.isTooLarge(), "a header line is rejected only for its size");
            return 0;
        }
        start = end;
    }
    const std::string& value = response.contentType;
    Fuzz::require(value.find('\n') == std::string::npos, "a value is one line");
    Fuzz::require(value.empty() || (value.front() != ' ' && value.back() != ' '),
                  "a value has no space around it");
    const bool isWhole = answer.takeBody(text) && answer.takeBody(text);
    Fuzz::require(isWhole == (2 * size <= LIMIT), "a body is accepted up to the limit");
    Fuzz::require(response.body.size() <= LIMIT, "the stored body is within the limit");
    return 0;
}
