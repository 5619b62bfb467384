#include <VeskLib/LockedFile.h>

#include "platform/host/storage/obtainLock.h"

#include <unistd.h>

namespace VeskLib {

namespace {

// Much longer than the lock is ever held (for one rename or removal), and well below the web
// server's time limit for a request.
const int WAIT_MILLISECONDS = 5000;

}  // namespace

LockedFile::LockedFile(const std::string& path)
    : descriptor(Host::obtainLock(path, WAIT_MILLISECONDS)) {
}

LockedFile::~LockedFile() {
    ::close(descriptor);
}

}  // namespace VeskLib
