#include "platform/host/storage/checkFile.h"

#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/ConfigurationFileReader.h"
#include "platform/host/storage/files.h"

#include <sys/stat.h>

#include <cerrno>
#include <tuple>
#include <utility>

namespace VeskLib::Host {

namespace {

// Returns a value that differs between files, and changes when a file is changed.
auto versionOf(const struct stat& status) {
    return std::make_tuple(status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
                           status.st_mtim.tv_nsec, status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
}

struct Reading {
    struct stat status = {};  // from before the file was read
    std::optional<SummedFile> result;
};

std::optional<ConfigurationFile> readWhole(int descriptor, SHA256* sum) {
    ConfigurationFileReader reader;
    const auto take = [&](const unsigned char* bytes, std::size_t size) {
        reader.take(bytes, size);
        if (sum != nullptr) {
            sum->add({reinterpret_cast<const char*>(bytes), size});
        }
    };
    if (!readPieces(descriptor, LARGEST_CONFIGURATION_FILE, take) && errno != EFBIG) {
        throw makePlatformException(FILE_NOT_READABLE, "A configuration file cannot be read");
    }
    ConfigurationFile file;
    return reader.finish(file) ? std::optional(std::move(file)) : std::nullopt;
}

}  // namespace

std::optional<ConfigurationFile> checkFile(int descriptor) {
    return readWhole(descriptor, nullptr);
}

std::optional<SummedFile> sumFile(int descriptor) {
    static std::optional<Reading> last;
    Reading now;
    if (::fstat(descriptor, &now.status) != 0) {
        throw makePlatformException(FILE_NOT_READABLE, "A configuration file cannot be read");
    }
    if (!last || versionOf(last->status) != versionOf(now.status)) {
        SHA256 sum;
        std::optional<ConfigurationFile> file = readWhole(descriptor, &sum);
        if (file) {
            now.result = {std::move(*file), sum.finish()};
        }
        last = std::move(now);
    }
    return last->result;
}

}  // namespace VeskLib::Host
