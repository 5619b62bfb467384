#include <VeskLib/VeskUi/EFIConfFile.h>

#include "platform/host/base/platformException.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/storage/checkFile.h"
#include "platform/host/storage/files.h"

#include <unistd.h>

#include <optional>
#include <utility>

namespace VeskLib::VeskUi {

namespace {

// Returns the value of `file`. Throws PException if there is none.
template <typename File>
File require(std::optional<File> file) {
    if (!file) {
        throw Host::makePlatformException(Host::NOT_A_CONFIGURATION_FILE, "EFIConfFile: content");
    }
    return std::move(*file);
}

}  // namespace

EFIConfFile::EFIConfFile(const char* path) : descriptor(Host::openForReading(path)) {
    if (descriptor < 0) {
        throw Host::makePlatformException(Host::FILE_NOT_READABLE, "EFIConfFile: open");
    }
}

EFIConfFile::~EFIConfFile() {
    ::close(descriptor);
}

void EFIConfFile::getFileHeader(EFIConfFileHeader& header, std::string& version) {
    // Check the whole file, because the content after an intact header may be damaged.
    Host::ConfigurationFile file = require(Host::checkFile(descriptor));
    header.revision = file.revision;
    header.saveTime = file.saveTime;
    version.swap(file.version);
}

void EFIConfFile::getFileHeader(EFIConfFileHeader& header, std::string& version,
                                unsigned int& partition, std::string& partitionName) {
    // Pages use this form only for the staged file. Its name must be the sum of the bytes read.
    auto [file, sum] = require(Host::sumFile(descriptor));
    Host::setShownFile(sum);
    header.revision = file.revision;
    header.saveTime = file.saveTime;
    version.swap(file.version);
    partition = file.partition;
    partitionName.swap(file.partitionName);
}

}  // namespace VeskLib::VeskUi
