#pragma once

#include "platform/host/storage/ConfigurationFile.h"

#include <optional>
#include <string>

namespace VeskLib::Host {

// Reads an open file from its start, piece by piece. Returns it without its payload, or nullopt if
// it is not a complete and undamaged configuration file. Throws PException (FILE_NOT_READABLE) if
// it cannot be read.
std::optional<ConfigurationFile> checkFile(int descriptor);

struct SummedFile {
    ConfigurationFile file;  // without its payload
    std::string sha256;      // of all bytes
};

// Like checkFile(), but also returns the sum. Does not read the same file again until it changes,
// because an upload needs the sum twice, for its page and for the audit log, and computing it takes
// longer than the rest of the request.
std::optional<SummedFile> sumFile(int descriptor);

}  // namespace VeskLib::Host
