#include <VeskLib/LockedFile.h>

#include "platform/host/storage/obtainLock.h"

#include <unistd.h>

namespace VeskLib {

namespace {

// Far longer than any holder needs (one rename or one removal), and well inside the time that the
// web server gives a request.
const int WAIT_MILLISECONDS = 5000;

}  // namespace

LockedFile::LockedFile(const std::string& path)
    : descriptor(Host::obtainLock(path, WAIT_MILLISECONDS)) {
}

LockedFile::~LockedFile() {
    ::close(descriptor);
}

}  // namespace VeskLib
