#include "platform/host/web/partHeader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"

#include <algorithm>

namespace VeskLib::Host {

namespace {

const std::string_view LINE_BREAK = "\r\n";

[[noreturn]] void refuse(const char* problem) {
    throw makePlatformException(REQUEST_MALFORMED, problem);
}

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

std::string_view trim(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(" \t") - start + 1);
}

// Takes a quoted text off the front of `rest`, which begins behind the opening quote. Browsers
// escape no backslash, so it stands for itself except in front of a quote or another backslash.
std::string takeQuoted(std::string_view& rest) {
    std::string text;
    std::size_t i = 0;
    for (; i < rest.size() && rest[i] != '"'; ++i) {
        const bool escape =
            rest[i] == '\\' && i + 1 < rest.size() && (rest[i + 1] == '"' || rest[i + 1] == '\\');
        i += escape ? 1 : 0;
        text += rest[i];
    }
    rest.remove_prefix(std::min(i + 1, rest.size()));
    return text;
}

// Takes "name=value" off the front of `rest`, which begins behind a ";".
void takeParameter(std::string_view& rest, std::string_view& name, std::string& value) {
    const std::size_t nameEnd = std::min(rest.find_first_of("=;"), rest.size());
    name = trim(rest.substr(0, nameEnd));
    rest.remove_prefix(nameEnd);
    value.clear();
    if (!rest.starts_with('=')) {
        return;
    }
    rest.remove_prefix(1);
    if (rest.starts_with('"')) {
        rest.remove_prefix(1);
        value = takeQuoted(rest);
    } else {
        value = trim(rest.substr(0, rest.find(';')));
    }
}

void parseDisposition(std::string_view value, PartHeader& header) {
    if (!equalsIgnoringCase(trim(value.substr(0, value.find(';'))), "form-data")) {
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

bool findParameter(std::string_view header, std::string_view name, std::string& value) {
    std::string_view rest = header;
    for (std::size_t start = rest.find(';'); start != std::string_view::npos;
         start = rest.find(';')) {
        rest.remove_prefix(start + 1);
        std::string_view found;
        std::string text;
        takeParameter(rest, found, text);
        if (equalsIgnoringCase(found, name)) {
            value = text;
            return true;
        }
    }
    return false;
}

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
