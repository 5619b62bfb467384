#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <cstdint>
#include <optional>
#include <string>

namespace VeskLib::Board {

// The name under which a browser saves a backup:
//
//   ("Partition" number | "BIOS") "_" year month day "_" version ".dat"
//
// with the date in local time, month and day in two digits, and the version without its dots and
// blanks, or "Unknown" when it begins with "-". For example Partition3_20261114_123B.dat.
class DownloadName {
public:
    // Parses `text`. Returns nullopt if it does not have exactly this form, or if its version
    // contains control characters or bytes that are not UTF-8.
    static std::optional<DownloadName> parse(const std::string& text);

    // Returns true if a backup with the header of `file` is saved under this name.
    bool fits(const Host::ConfigurationFile& file) const;

    // Returns the value of the Content-Disposition header for this name, with "_" for path
    // separators, quotes and backslashes of a version.
    std::string contentDisposition() const;

private:
    DownloadName() = default;

    std::string text;
    std::string partition;  // in decimal; empty if the name does not contain it
    std::string date;
    std::string version;
};

}  // namespace VeskLib::Board
