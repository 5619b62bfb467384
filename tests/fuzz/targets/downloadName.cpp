// The file name of a downloaded backup, and the header that contains it.

#include "board/web/DownloadName.h"
#include "board/web/utf8.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <algorithm>

using namespace VeskLib;
using Board::DownloadName;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Fuzz::textOf(data, size);
    const std::optional<DownloadName> name = DownloadName::parse(text);
    if (!name) {
        return 0;
    }
    Fuzz::require(text.ends_with(".dat") && Board::isPrintableUTF8(text),
                  "a name is printable and ends with .dat");
    name->fits(Host::ConfigurationFile());

    const std::string header = name->contentDisposition();
    Fuzz::require(header.size() <= 100 + 4 * size, "a header is not much longer than its name");
    Fuzz::require(std::all_of(header.begin(), header.end(),
                              [](char character) { return character >= 0x20 && character < 0x7F; }),
                  "a header is one line of ASCII");
    const std::string fileName = header.substr(0, header.find(';', header.find("\";")));
    Fuzz::require(fileName.find_first_of("/\\'") == std::string::npos, "a name contains no path");
    Fuzz::require(std::count(header.begin(), header.end(), '"') == 2, "a name is quoted once");
    return 0;
}
