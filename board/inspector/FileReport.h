#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// What there is to say of one file.
struct FileReport {
    enum class Verdict { USABLE, NOT_READABLE, TOO_LARGE, NOT_A_CONFIGURATION_FILE };

    std::string path;
    Verdict verdict = Verdict::NOT_READABLE;
    std::string reason;         // why it is not usable; empty when it is
    std::size_t size = 0;       // in bytes; 0 when it is not readable
    std::string sha256;         // of the whole file, in hexadecimal; empty when there are no bytes
    std::string payloadSha256;  // empty unless it is usable
    Host::ConfigurationFile file;  // empty unless it is usable
};

// Looks at the file `path`, with the same eyes as the pages. Never throws for what is in it.
FileReport inspect(const std::string& path);

// "usable", "not readable", ...
const char* nameOf(FileReport::Verdict verdict);

// One thing in which two usable files differ.
struct Difference {
    std::string what;
    std::string first;  // "(none)" where the first file has nothing of the kind
    std::string second;
};

enum class SaveTime { COMPARED, IGNORED };

// Returns the differences of the header fields, of the payload's length and of its settings by name
// (PayloadSettings.h), and the place of the first different byte that is not explained by those.
// Empty if the files have the same content. Two backups of an unchanged partition differ in their
// save times only.
std::vector<Difference> compare(const Host::ConfigurationFile& first,
                                const Host::ConfigurationFile& second,
                                SaveTime saveTime = SaveTime::COMPARED);

// Seconds since 1970-01-01 UTC as "2026-03-07T12:00:00Z".
std::string formatTime(std::uint32_t time);

// The same in the local time zone, as "2026-03-07T21:00:00+09:00".
std::string formatLocalTime(std::uint32_t time);

}  // namespace VeskLib::Board
