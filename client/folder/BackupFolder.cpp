#include "client/folder/BackupFolder.h"

#include "client/Failure.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <regex>

namespace Efictl {

namespace {

using VeskLib::Host::Descriptor;

// Configurations are confidential.
const mode_t FOLDER_MODE = 0700;
const int FILE_MODE = 0600;

// The number of names to try. If a name is taken, the next one has a time one second later.
const int MOST_NAMES = 100;

[[noreturn]] void throwSystemError(const std::string& what, int error) {
    if (error == ENOSPC || error == EDQUOT) {
        throw Failure(ExitCode::FAILED, what + ": the disk is full.");
    }
    throw Failure(ExitCode::FAILED, what + ": " + std::strerror(error) + ".");
}

bool isMade(const std::string& path, const Bytes& bytes) {
    if (VeskLib::Host::createFile(path, bytes, FILE_MODE)) {
        return true;
    }
    // On a file system without unnamed files, writes it under another name and then renames it.
    const bool lacksNameless = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL;
    struct stat status = {};
    if (!lacksNameless || lstat(path.c_str(), &status) == 0) {
        return false;
    }
    return VeskLib::Host::replaceFile(path, bytes, FILE_MODE);
}

}  // namespace

std::optional<BackupName> BackupName::parse(const std::string& name) {
    static const std::regex shape("partition([0-9]{3,9})-([0-9]{8}T[0-9]{6})Z\\.dat");
    std::smatch parts;
    std::tm time = {};
    if (!std::regex_match(name, parts, shape) ||
        strptime(parts[2].str().c_str(), "%Y%m%dT%H%M%S", &time) == nullptr) {
        return std::nullopt;
    }
    return BackupName{name, static_cast<unsigned int>(std::stoul(parts[1])), timegm(&time)};
}

BackupName BackupName::make(unsigned int partition, std::time_t time) {
    std::tm utc = {};
    gmtime_r(&time, &utc);
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "-%Y%m%dT%H%M%SZ.dat", &utc);
    std::string number = std::to_string(partition);
    const std::size_t digits = 3;
    number.insert(0, digits - std::min(digits, number.size()), '0');
    return {"partition" + number + std::string(text, length), partition, time};
}

BackupFolder::BackupFolder(const std::string& path, Use use) : path(path) {
    if (use == Use::WRITE && mkdir(path.c_str(), FOLDER_MODE) != 0 && errno != EEXIST) {
        throwSystemError("The folder " + path + " cannot be created", errno);
    }
    hold = std::make_unique<Descriptor>(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!hold->isOpen()) {
        throwSystemError("The folder " + path + " cannot be opened", errno);
    }
    if (use == Use::READ) {
        return;
    }
    if (flock(hold->get(), LOCK_EX | LOCK_NB) != 0) {
        throw Failure(ExitCode::FAILED, "Another efictl is writing into the folder " + path + ".");
    }
    if (access(path.c_str(), W_OK | X_OK) != 0) {
        throwSystemError("The folder " + path + " is not writable", errno);
    }
    VeskLib::Host::removeFilesAside(path + "/partition");
}

std::vector<BackupName> BackupFolder::list() const {
    std::vector<BackupName> backups;
    for (const std::string& name : VeskLib::Host::listNames(path)) {
        if (const std::optional<BackupName> backup = BackupName::parse(name)) {
            backups.push_back(*backup);
        }
    }
    std::sort(backups.begin(), backups.end(), [](const BackupName& one, const BackupName& other) {
        return one.partition != other.partition ? one.partition < other.partition
                                                : one.time > other.time;
    });
    return backups;
}

std::vector<BackupName> BackupFolder::list(unsigned int partition) const {
    std::vector<BackupName> backups = list();
    std::erase_if(backups,
                  [partition](const BackupName& backup) { return backup.partition != partition; });
    return backups;
}

std::optional<Backup> BackupFolder::read(const BackupName& name) const {
    Bytes bytes;
    Backup backup;
    if (!VeskLib::Host::readFile(pathOf(name.name), VeskLib::Host::LARGEST_CONFIGURATION_FILE,
                                 bytes) ||
        !decode(bytes, backup.file) || backup.file.partition != name.partition) {
        return std::nullopt;
    }
    backup.name = name;
    backup.size = bytes.size();
    backup.sha256 = VeskLib::Host::sha256Hex(bytes);
    return backup;
}

std::optional<Backup> BackupFolder::findNewest(unsigned int partition) const {
    for (const BackupName& name : list(partition)) {
        if (std::optional<Backup> backup = read(name)) {
            return backup;
        }
    }
    return std::nullopt;
}

BackupName BackupFolder::store(unsigned int partition, const Bytes& bytes) {
    std::time_t time = std::time(nullptr);
    for (int attempt = 0;; ++attempt, ++time) {
        const BackupName backup = BackupName::make(partition, time);
        if (isMade(pathOf(backup.name), bytes)) {
            return backup;
        }
        if (errno != EEXIST || attempt == MOST_NAMES) {
            throwSystemError("The backup cannot be stored in the folder " + path, errno);
        }
    }
}

std::vector<std::string> BackupFolder::removeOlder(unsigned int partition, std::size_t keep) {
    std::vector<std::string> removed;
    std::size_t usable = 0;
    for (const BackupName& backup : list(partition)) {
        if (usable < keep) {
            usable += read(backup) ? 1 : 0;
        } else if (unlink(pathOf(backup.name).c_str()) == 0) {
            removed.push_back(backup.name);
        } else {
            throwSystemError("The old backup " + backup.name + " cannot be removed", errno);
        }
    }
    return removed;
}

}  // namespace Efictl
