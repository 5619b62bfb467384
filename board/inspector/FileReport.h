#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <string>
#include <vector>

namespace VeskLib::Board {

// The result of inspecting a file.
struct FileReport {
    enum class Verdict { USABLE, NOT_READABLE, TOO_LARGE, NOT_A_CONFIGURATION_FILE };

    std::string path;
    Verdict verdict = Verdict::NOT_READABLE;
    std::string reason;            // why the file is not usable; empty if it is
    std::size_t size = 0;          // in bytes; 0 if the file is not readable
    std::string sha256;            // of the whole file, in hexadecimal; empty if it was not read
    std::string payloadSha256;     // empty unless it is usable
    Host::ConfigurationFile file;  // empty unless it is usable
};

// Inspects the file `path`, with the same parser as the pages. Does not throw, whatever it
// contains.
FileReport inspect(const std::string& path);

// Returns "usable", "not readable" and so on.
const char* nameOf(FileReport::Verdict verdict);

// One difference between two usable files.
struct Difference {
    std::string what;
    std::string first;  // "(none)" if the first file has no such item
    std::string second;
};

enum class SaveTime { COMPARED, IGNORED };

// Returns the differences of the header fields, of the payload's length and of its settings by name
// (PayloadSettings.h), and the place of the first other byte that differs. Empty if the files have
// the same content. Two backups of an unchanged partition differ only in their save times.
std::vector<Difference> compare(const Host::ConfigurationFile& first,
                                const Host::ConfigurationFile& second,
                                SaveTime saveTime = SaveTime::COMPARED);

// Returns seconds since 1970-01-01 UTC as "2026-03-07T12:00:00Z".
std::string formatTime(std::uint32_t time);

// The same in the local time zone, as "2026-03-07T21:00:00+09:00".
std::string formatLocalTime(std::uint32_t time);

}  // namespace VeskLib::Board
