#include "platform/host/web/UploadFile.h"

#include "platform/host/base/DeferredTermination.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/randomText.h"
#include "platform/host/base/writeWhole.h"
#include "platform/host/session/abandonedUploads.h"
#include "platform/host/storage/files.h"
#include "platform/host/web/FormLimits.h"

#include <VeskLib/getCGIPath.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace VeskLib::Host {

namespace {

const char* const FOLDER = "/var/tmp";
const mode_t FILE_MODE = 0600;
const std::size_t NAME_BYTES = 8;

unsigned int named = 0;

}  // namespace

UploadFile::~UploadFile() {
    remove();
}

bool UploadFile::open() {
    if (descriptor < 0) {
        descriptor =
            ::open(getCGIPath(FOLDER).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, FILE_MODE);
    }
    return descriptor >= 0;
}

void UploadFile::write(std::string_view bytes) {
    const auto stored =
        static_cast<std::size_t>(std::min<std::uint64_t>(received, FormLimits::FILE_LENGTH));
    const std::size_t room = FormLimits::FILE_LENGTH - stored;
    received += bytes.size();
    if (kept && room != 0 && !bytes.empty() && !failed) {
        failed = !open() || !writeWhole(descriptor, bytes.substr(0, room));
    }
}

std::uint32_t UploadFile::size() const {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(received, std::numeric_limits<std::uint32_t>::max()));
}

std::string UploadFile::path() {
    if (failed) {
        throw makePlatformException(UPLOAD_NOT_STORED, "The uploaded file cannot be stored");
    }
    if (descriptor < 0 || received > FormLimits::FILE_LENGTH) {
        return {};
    }
    if (name.empty()) {
        removeAbandonedUploads();
        // The lock marks the upload as not abandoned. No other process can hold it yet.
        if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
            throw makePlatformException(UPLOAD_NOT_STORED, "The uploaded file cannot be locked");
        }
        // Otherwise the program could be ended between moving the file and recording the upload.
        deferTerminationForGood();
        std::string chosen = getCGIPath(UPLOAD_FILE) + makeRandomText(NAME_BYTES);
        if (!nameFile(descriptor, chosen)) {
            throw makePlatformException(UPLOAD_NOT_STORED, "The uploaded file cannot be named");
        }
        name = std::move(chosen);  // does not allocate: a named file must not be lost track of
        ++named;
    }
    return name;
}

unsigned int UploadFile::namedFiles() {
    return named;
}

void UploadFile::remove() {
    if (!name.empty()) {
        ::unlink(name.c_str());
        name.clear();
    }
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
    failed = false;
    received = 0;
}

}  // namespace VeskLib::Host
