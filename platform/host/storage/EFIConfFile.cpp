#include <VeskLib/VeskUi/EFIConfFile.h>

#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/storage/ConfigurationFileReader.h"
#include "platform/host/storage/files.h"

#include <unistd.h>

#include <cerrno>

namespace VeskLib::VeskUi {

namespace {

// The whole file is read and checked also when only its header is asked for: a header in front of
// damaged content must not pass for a good file. Adds the bytes to `sum` unless it is null.
Host::ConfigurationFile readChecked(int descriptor, Host::SHA256* sum) {
    Host::ConfigurationFileReader reader;
    const auto take = [&reader, sum](const unsigned char* bytes, std::size_t size) {
        reader.take(bytes, size);
        if (sum != nullptr) {
            sum->add({reinterpret_cast<const char*>(bytes), size});
        }
    };
    if (!Host::readPieces(descriptor, Host::LARGEST_CONFIGURATION_FILE, take) && errno != EFBIG) {
        throw Host::makePlatformException(Host::FILE_NOT_READABLE, "EFIConfFile: read");
    }
    Host::ConfigurationFile file;
    if (!reader.finish(file)) {
        throw Host::makePlatformException(Host::NOT_A_CONFIGURATION_FILE, "EFIConfFile: content");
    }
    return file;
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
    Host::ConfigurationFile file = readChecked(descriptor, nullptr);
    header.revision = file.revision;
    header.saveTime = file.saveTime;
    version.swap(file.version);
}

void EFIConfFile::getFileHeader(EFIConfFileHeader& header, std::string& version,
                                unsigned int& partition, std::string& partitionName) {
    // Pages ask so only for the staged file. What names it belongs to the bytes that were read.
    Host::SHA256 sum;
    Host::ConfigurationFile file = readChecked(descriptor, &sum);
    Host::setShownFile(sum.finish());
    header.revision = file.revision;
    header.saveTime = file.saveTime;
    version.swap(file.version);
    partition = file.partition;
    partitionName.swap(file.partitionName);
}

}  // namespace VeskLib::VeskUi
