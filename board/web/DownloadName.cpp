#include "board/web/DownloadName.h"

#include "board/web/utf8.h"
#include "platform/host/html/escape.h"

#include <algorithm>
#include <ctime>
#include <string_view>

namespace VeskLib::Board {

namespace {

const std::string_view NAMED_START = "Partition";
const std::string_view UNNAMED_START = "BIOS_";
const std::string_view EXTENSION = ".dat";
const std::size_t LONGEST_NUMBER = 10;  // digits of the largest 32-bit number
const std::size_t DATE_LENGTH = 8;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// Removes the digits from the start of `text` and returns them.
std::string takeDigits(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string digits(text.begin(), end);
    text.remove_prefix(digits.size());
    return digits;
}

// Returns `name` with "_" for path separators and quotes, which a version may contain but a file
// name must not.
std::string makeSafe(std::string name) {
    const std::string_view unsafe = "/\\\"'";
    std::replace_if(
        name.begin(), name.end(),
        [unsafe](char character) { return unsafe.find(character) != std::string_view::npos; }, '_');
    return name;
}

std::string twoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string localDate(std::uint32_t saveTime) {
    const std::time_t time = saveTime;
    std::tm date = {};
    localtime_r(&time, &date);
    return std::to_string(1900 + date.tm_year) + twoDigits(date.tm_mon + 1) +
           twoDigits(date.tm_mday);
}

// Returns the version as it appears in a name.
std::string versionPart(const std::string& version) {
    if (version.starts_with('-')) {
        return "Unknown";
    }
    std::string part = version.substr(0, version.find('\0'));
    std::erase_if(part, [](char character) { return character == '.' || character == ' '; });
    return part;
}

}  // namespace

std::optional<DownloadName> DownloadName::parse(const std::string& text) {
    std::string_view rest = text;
    if (!rest.ends_with(EXTENSION)) {
        return std::nullopt;
    }
    rest.remove_suffix(EXTENSION.size());

    DownloadName name;
    name.text = text;
    if (takePrefix(rest, NAMED_START)) {
        name.partition = takeDigits(rest);
        const std::size_t length = name.partition.size();
        if (length == 0 || length > LONGEST_NUMBER || !takePrefix(rest, "_")) {
            return std::nullopt;
        }
    } else if (!takePrefix(rest, UNNAMED_START)) {
        return std::nullopt;
    }
    name.date = takeDigits(rest);
    if (name.date.size() != DATE_LENGTH || !takePrefix(rest, "_") || !isPrintableUTF8(rest)) {
        return std::nullopt;
    }
    name.version = rest;
    return name;
}

bool DownloadName::fits(const Host::ConfigurationFile& file) const {
    // A page shows some characters of a version as others, and its link contains the shown ones.
    return (partition.empty() || partition == std::to_string(file.partition)) &&
           date == localDate(file.saveTime) &&
           Host::makeVisible(version) == Host::makeVisible(versionPart(file.version));
}

std::string DownloadName::contentDisposition() const {
    const std::string name = makeSafe(text);
    std::string value = "attachment; filename=\"" + replaceNonASCII(name, '_') + "\"";
    if (!isASCII(name)) {
        value += "; filename*=UTF-8''" + percentEncode(name);
    }
    return value;
}

}  // namespace VeskLib::Board
