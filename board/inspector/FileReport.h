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
    std::string reason;         // of NOT_READABLE, the system's words
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

// Header fields, the payload's length, its settings where both payloads are "name=value" lines, or
// else the place of its first different byte. Empty when the files hold the same.
std::vector<Difference> compare(const Host::ConfigurationFile& first,
                                const Host::ConfigurationFile& second);

// Seconds since 1970-01-01 UTC as "2026-03-07T12:00:00Z".
std::string formatTime(std::uint32_t time);

}  // namespace VeskLib::Board
