#include "platform/host/session/abandonedUploads.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace VeskLib::Host {

namespace {

// An upload is locked before it gets its name, and moved or removed before its process releases the
// lock. One that can be locked is therefore abandoned.
bool isAbandoned(const std::string& path) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        return true;
    }
    const Descriptor upload(openForReading(path));
    return upload.isOpen() && flock(upload.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

void removeAbandonedUploads() {
    const std::string start = getCGIPath(UPLOAD_FILE);
    const std::size_t slash = start.rfind('/');
    const std::string folder = start.substr(0, slash);
    const std::string_view prefix = std::string_view(start).substr(slash + 1);
    for (const std::string& name : listNames(folder)) {
        const std::string path = pathIn(folder, name);
        if (name.starts_with(prefix) && isAbandoned(path)) {
            unlink(path.c_str());
        }
    }
}

}  // namespace VeskLib::Host
