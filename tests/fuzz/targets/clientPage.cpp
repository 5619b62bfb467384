// A page of a board, as efictl parses it, and the texts that efictl prints from it.

#include "client/Failure.h"
#include "client/page/BoardPage.h"
#include "client/report/printResult.h"
#include "tests/fuzz/support/require.h"

#include <algorithm>

using namespace Efictl;
using namespace VeskLib;

namespace {

const std::size_t SHORT = 1024;

// Only the first bytes of a small input are also checked as a plain text, because checking all of
// it would take half of the time.
const std::size_t SMALL = 256;
const std::size_t SAMPLE = 32;

void requireHarmless(const std::string& text) {
    const std::string shown = forTerminal(text);
    Fuzz::require(std::none_of(shown.begin(), shown.end(),
                               [](char character) {
                                   const auto byte = static_cast<unsigned char>(character);
                                   return byte < 0x20 || byte == 0x7F;
                               }),
                  "a printed text contains no control characters");
    Fuzz::require(
        shown.find("\u009b") == std::string::npos && shown.find("\u202e") == std::string::npos,
        "a printed text contains no C1 control and no direction override");
    // A longer text is cut, and a mark is appended.
    Fuzz::require(text.size() > SHORT || forTerminal(shown) == shown,
                  "a text that was made printable does not change again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    requireHarmless(size <= SMALL ? text.substr(0, SAMPLE) : text);
    BoardPage page;
    try {
        page = readBoardPage(text);
    } catch (const Failure& failure) {
        Fuzz::require(failure.exitCode() == ExitCode::UNREACHABLE,
                      "an unusable page is reported as UNREACHABLE");
        return 0;
    }
    Fuzz::require(page.notice() == nullptr || !page.notices.empty(),
                  "notice() is one of the page's notices");
    requireHarmless(page.title);
    requireHarmless(page.boardName);
    for (const PartitionRow& partition : page.partitions) {
        requireHarmless(partition.name);
    }
    for (const Notice& notice : page.notices) {
        requireHarmless(notice.text);
        Fuzz::require(notice.message >= 0 && notice.message <= 0xFFFF && notice.code >= 0,
                      "message numbers and codes are in range");
    }
    return 0;
}
