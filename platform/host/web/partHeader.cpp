#include "platform/host/web/partHeader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"
#include "platform/host/web/headerValue.h"

#include <algorithm>

namespace VeskLib::Host {

namespace {

const std::string_view LINE_BREAK = "\r\n";

[[noreturn]] void refuse(const char* problem) {
    throw makePlatformException(REQUEST_MALFORMED, problem);
}

void parseDisposition(std::string_view value, PartHeader& header) {
    header = PartHeader();  // of several, only the last one counts
    if (!equalsIgnoringCase(mainValue(value), "form-data")) {
        refuse("A part is not form data");
    }
    if (!findParameter(value, "name", header.name) || header.name.empty()) {
        refuse("A part has no name");
    }
    header.isFile = findParameter(value, "filename", header.fileName);
    if (header.name.size() > FormLimits::NAME_LENGTH ||
        header.fileName.size() > FormLimits::FILE_NAME_LENGTH) {
        throw makePlatformException(REQUEST_TOO_LARGE, "A part's name is too long");
    }
}

}  // namespace

PartHeader parsePartHeader(std::string_view lines) {
    PartHeader header;
    while (!lines.empty()) {
        lines.remove_prefix(LINE_BREAK.size());
        const std::size_t end = std::min(lines.find(LINE_BREAK), lines.size());
        const std::string_view line = lines.substr(0, end);
        lines.remove_prefix(end);
        const std::size_t colon = line.find(':');
        if (line.starts_with(' ') || line.starts_with('\t') || colon == std::string_view::npos) {
            refuse("A part's header is malformed");
        }
        if (equalsIgnoringCase(trim(line.substr(0, colon)), "content-disposition")) {
            parseDisposition(line.substr(colon + 1), header);
        }
    }
    if (header.name.empty()) {
        refuse("A part has no name");
    }
    return header;
}

}  // namespace VeskLib::Host
