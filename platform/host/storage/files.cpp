#include "platform/host/storage/files.h"

#include "platform/host/base/Descriptor.h"
#include "platform/host/base/writeWhole.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace VeskLib::Host {

namespace {

// A temporary file is named by the path it will replace, this mark and six random characters.
const std::string_view ASIDE_MARK = ".aside-";
const std::string_view ASIDE_RANDOM = "XXXXXX";
const std::size_t PIECE_SIZE = 16 * 1024;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Writes the bytes to an empty file, sets its mode, and syncs it.
bool fill(int descriptor, const std::vector<unsigned char>& bytes, int mode) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return writeWhole(descriptor, text) && ::fchmod(descriptor, static_cast<mode_t>(mode)) == 0 &&
           ::fsync(descriptor) == 0;
}

// Creates a synced temporary file with these bytes. Replaces the Xs in `aside` to make its name.
bool writeAside(std::string& aside, const std::vector<unsigned char>& bytes, int mode) {
    const Descriptor file(::mkostemp(aside.data(), O_CLOEXEC));
    return file.isOpen() && fill(file.get(), bytes, mode);
}

bool check(const std::function<bool()>& isWanted) {
    if (isWanted()) {
        return true;
    }
    errno = ECANCELED;
    return false;
}

void unlinkKeepingErrno(const std::string& path) {
    const int reason = errno;
    ::unlink(path.c_str());
    errno = reason;
}

int openFolderOf(const std::string& path) {
    return ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool syncFolder(int folder) {
    // EINVAL means that the file system cannot sync folders.
    return ::fsync(folder) == 0 || errno == EINVAL;
}

// Sets `status`. Returns false, with errno set, unless the open file is a regular file of at most
// `limit` bytes.
bool findStatus(int descriptor, std::size_t limit, struct stat& status) {
    if (::fstat(descriptor, &status) != 0) {
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return false;
    }
    // Compared before it is converted to std::size_t, which may be narrower.
    if (static_cast<std::uint64_t>(status.st_size) > limit) {
        errno = EFBIG;
        return false;
    }
    return true;
}

// Like pread(), but retries when a signal interrupts it.
ssize_t readAt(int descriptor, unsigned char* bytes, std::size_t size, std::size_t position) {
    ssize_t count = 0;
    do {
        count = ::pread(descriptor, bytes, size, static_cast<off_t>(position));
    } while (count < 0 && errno == EINTR);
    return count;
}

// Reads an open regular file that has this status, from its start.
bool readContent(int descriptor, const struct stat& status, std::vector<unsigned char>& bytes) {
    std::vector<unsigned char> content(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    if (!readSpan(descriptor, 0, content, filled)) {
        return false;
    }
    content.resize(filled);
    bytes.swap(content);
    return true;
}

// Replaces an EPERM of the system, so that EPERM always means a file of another user.
void hideDenial() {
    errno = errno == EPERM ? EACCES : errno;
}

bool isAsideName(std::string_view name, std::string_view start) {
    return name.size() >= start.size() + ASIDE_MARK.size() + ASIDE_RANDOM.size() &&
           name.starts_with(start) &&
           name.substr(name.size() - ASIDE_RANDOM.size() - ASIDE_MARK.size())
               .starts_with(ASIDE_MARK);
}

}  // namespace

bool readSpan(int descriptor, std::size_t position, std::span<unsigned char> place,
              std::size_t& filled) {
    filled = 0;
    ssize_t count = 1;
    while (filled < place.size() && count > 0) {  // a file may be truncated while it is read
        count = readAt(descriptor, place.data() + filled, place.size() - filled, position + filled);
        filled += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return count >= 0;
}

int openForReading(const std::string& path) {
    return ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
}

bool readOpenFile(int descriptor, std::size_t limit, std::vector<unsigned char>& bytes) {
    struct stat status = {};
    return findStatus(descriptor, limit, status) && readContent(descriptor, status, bytes);
}

bool readPieces(int descriptor, std::size_t limit,
                const std::function<void(const unsigned char*, std::size_t)>& take) {
    struct stat status = {};
    if (!findStatus(descriptor, limit, status)) {
        return false;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    unsigned char piece[PIECE_SIZE];
    std::size_t position = 0;
    ssize_t count = 1;
    while (position < size && count > 0) {
        count = readAt(descriptor, piece, std::min(sizeof piece, size - position), position);
        if (count > 0) {
            take(piece, static_cast<std::size_t>(count));
            position += static_cast<std::size_t>(count);
        }
    }
    return count >= 0;
}

bool readFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes) {
    const Descriptor file(openForReading(path));
    return file.isOpen() && readOpenFile(file.get(), limit, bytes);
}

int openOwnFile(const std::string& path, std::size_t limit, struct stat& status) {
    const int file = openForReading(path);
    if (file < 0 || !findStatus(file, limit, status)) {
        hideDenial();
    } else if (status.st_uid == ::geteuid()) {
        return file;
    } else {
        errno = EPERM;
    }
    const Descriptor unusable(file);
    return -1;
}

bool readOwnFile(const std::string& path, std::size_t limit, std::vector<unsigned char>& bytes,
                 struct stat& status) {
    const Descriptor file(openOwnFile(path, limit, status));
    if (!file.isOpen()) {
        return false;
    }
    if (!readContent(file.get(), status, bytes)) {
        hideDenial();
        return false;
    }
    return true;
}

bool replaceFile(const std::string& path, const std::vector<unsigned char>& bytes, int mode,
                 const std::function<bool()>& isWanted) {
    std::string aside = path;
    aside += ASIDE_MARK;
    aside += ASIDE_RANDOM;
    const Descriptor folder(openFolderOf(path));
    if (!folder.isOpen()) {
        return false;
    }
    if (!writeAside(aside, bytes, mode) || !check(isWanted) ||
        ::rename(aside.c_str(), path.c_str()) != 0) {
        unlinkKeepingErrno(aside);
        return false;
    }
    return syncFolder(folder.get());
}

bool nameFile(int descriptor, const std::string& path) {
    const std::string unnamed = "/proc/self/fd/" + std::to_string(descriptor);
    return ::linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool createFile(const std::string& path, const std::vector<unsigned char>& bytes, int mode) {
    const Descriptor folder(openFolderOf(path));
    if (!folder.isOpen()) {
        return false;
    }
    const Descriptor file(::openat(folder.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600));
    if (!file.isOpen() || !fill(file.get(), bytes, mode) || !nameFile(file.get(), path)) {
        return false;
    }
    if (!syncFolder(folder.get())) {
        unlinkKeepingErrno(path);
        return false;
    }
    return true;
}

std::vector<std::string> listNames(const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(folder.c_str()), ::closedir);
    if (opened != nullptr) {
        while (const dirent* entry = ::readdir(opened.get())) {
            names.emplace_back(static_cast<const char*>(entry->d_name));
        }
    }
    return names;
}

std::string pathIn(const std::string& folder, const std::string& name) {
    std::string path = folder;
    path += '/';
    path += name;
    return path;
}

void removeFilesAside(const std::string& pathStart) {
    const std::string folder = folderOf(pathStart);
    const std::string start = nameOf(pathStart);
    for (const std::string& name : listNames(folder)) {
        if (isAsideName(name, start)) {
            ::unlink(pathIn(folder, name).c_str());
        }
    }
}

}  // namespace VeskLib::Host
