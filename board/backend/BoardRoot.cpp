#include "board/backend/BoardRoot.h"

#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/channel/BoardProperties.h"
#include "platform/host/storage/files.h"
#include "platform/host/storage/obtainLock.h"

#include <VeskLib/getCGIPath.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace VeskLib::Board {

namespace {

const char* const FOLDERS[] = {"/var",     "/var/run",       "/var/tmp",        "/var/log",
                               "/var/lib", "/var/lib/board", "/var/lib/session"};
const char* const STATE_FILE = "/var/lib/board/configurations";
const char* const ROOT_LOCK = "/var/lib/board/backend.lock";
const char* const RESTORE_LOCK = "/var/lib/board/restore.lock";

// Only the board's user may access its folders.
const mode_t FOLDER_MODE = 0700;
const mode_t OTHERS_WRITE = S_IWGRP | S_IWOTH;
const int PROPERTIES_MODE = 0600;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void needFolder(const std::string& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        fail("cannot use " + path);
    }
    if (!S_ISDIR(status.st_mode)) {
        throw std::runtime_error("cannot use " + path + ": it is not a folder");
    }
    // Anybody who can write there could make the board use their files in place of its own.
    if (status.st_uid != ::geteuid()) {
        throw std::runtime_error("cannot use " + path + ": it belongs to another user");
    }
    if ((status.st_mode & OTHERS_WRITE) != 0) {
        throw std::runtime_error("cannot use " + path + ": others may write there: chmod go-w " +
                                 path);
    }
}

void makeFolders() {
    for (const char* folder : FOLDERS) {
        const std::string path = getCGIPath(folder);
        if (::mkdir(path.c_str(), FOLDER_MODE) != 0 && errno != EEXIST) {
            fail("cannot make " + path);
        }
        needFolder(path);
    }
}

int lockRoot(const std::string& root) {
    const std::string path = getCGIPath(ROOT_LOCK);
    try {
        return Host::obtainLock(path, 0);
    } catch (const PException& failure) {
        throw std::runtime_error(failure.getExceptionDetail() == Host::LOCK_NOT_OBTAINED
                                     ? "a back-end is already running on " + root
                                     : "cannot lock " + path);
    }
}

int prepare(const std::string& root) {
    needFolder(root);
    if (::setenv("BOARD_ROOT", root.c_str(), 1) != 0) {
        fail("cannot use " + root);
    }
    makeFolders();
    return lockRoot(root);
}

void publish(const char* file, const std::vector<unsigned char>& bytes) {
    const std::string path = getCGIPath(file);
    if (!Host::replaceFile(path, bytes, PROPERTIES_MODE)) {
        fail("cannot write " + path);
    }
}

// Returns a line of the web server's configuration: a pattern that matches each Host that the board
// accepts. It also matches an empty one, because HTTP/1.0 has no Host.
std::vector<unsigned char> hostPattern(const std::vector<std::string>& hosts) {
    std::string pattern;
    for (const std::string& host : hosts) {
        pattern += pattern.empty() ? "" : "|";
        for (const char character : host) {
            pattern +=
                std::string_view(".[]").find(character) == std::string_view::npos ? "" : "\\";
            pattern += character;
        }
    }
    const std::string line = "var.hosts = \"^$|^(" + pattern + ")(:[0-9]+)?$\"\n";
    return {line.begin(), line.end()};
}

}  // namespace

BoardRoot::BoardRoot(const std::string& root) : lock(prepare(root)) {
    for (const char* path :
         {STATE_FILE, Host::BACKUP_FILE, Host::BOARD_PROPERTIES, Host::WEB_SERVER_HOSTS}) {
        Host::removeFilesAside(getCGIPath(path));
    }
}

BoardRoot::~BoardRoot() {
    ::close(lock);
}

std::string BoardRoot::statePath() const {
    return getCGIPath(STATE_FILE);
}

std::string BoardRoot::restoreLockPath() const {
    return getCGIPath(RESTORE_LOCK);
}

std::string BoardRoot::socketPath() const {
    return getCGIPath(Host::BACKEND_SOCKET);
}

void BoardRoot::publishProperties(const Host::BoardProperties& properties) const {
    publish(Host::WEB_SERVER_HOSTS, hostPattern(properties.hosts));
    publish(Host::BOARD_PROPERTIES, encode(properties));
}

}  // namespace VeskLib::Board
