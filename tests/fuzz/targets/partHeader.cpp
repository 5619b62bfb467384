// The header of a form's part, with a line break before each line.

#include "platform/host/web/partHeader.h"

#include "platform/host/web/FormLimits.h"
#include "tests/fuzz/support/formParts.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <VeskLib/PException.h>

using namespace VeskLib;
namespace FormLimits = Host::FormLimits;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // MultipartReader always passes headers with a leading line break.
    const std::string lines = "\r\n" + Fuzz::textOf(data, size);
    Host::PartHeader header;
    try {
        header = Host::parsePartHeader(lines);
    } catch (const PException&) {
        return 0;
    }
    Fuzz::require(!header.name.empty() && header.name.size() <= FormLimits::NAME_LENGTH &&
                      header.fileName.size() <= FormLimits::FILE_NAME_LENGTH,
                  "an accepted header is within the limits");
    Fuzz::require(header.isFile || header.fileName.empty(), "only a file has a file name");
    Fuzz::require(header.name.find("\r\n") == std::string::npos &&
                      header.fileName.find("\r\n") == std::string::npos,
                  "a name stays within its line");

    const Host::PartHeader again =
        Host::parsePartHeader(Fuzz::makeHeader({header.name, header.isFile, header.fileName, ""}));
    Fuzz::require(again.name == header.name && again.isFile == header.isFile &&
                      again.fileName == header.fileName,
                  "a header that is sent again is read unchanged");
    return 0;
}
