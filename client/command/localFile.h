#pragma once

#include "client/http/Transport.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <string>

namespace Efictl {

// A configuration file on this machine.
struct LocalFile {
    std::string path;
    std::string sha256;
    VeskLib::Host::ConfigurationFile file;

    Bytes bytes() const { return encode(file); }
};

// Reads a configuration file. Throws Failure (FAILED) with the reason if it is not usable.
LocalFile readLocalFile(const std::string& path);

}  // namespace Efictl
