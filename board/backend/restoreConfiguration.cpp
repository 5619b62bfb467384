#include "board/backend/restoreConfiguration.h"

#include "board/backend/Refusal.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"
#include "platform/host/storage/obtainLock.h"

#include <VeskLib/getCGIPath.h>

#include <unistd.h>

#include <set>
#include <string_view>

namespace VeskLib::Board {

namespace {

// Holds the lock file of restores; refuses when another restore holds it.
class RestoreLock {
public:
    explicit RestoreLock(const std::string& path) : descriptor(take(path)) {}
    RestoreLock(const RestoreLock&) = delete;
    RestoreLock& operator=(const RestoreLock&) = delete;
    ~RestoreLock() { ::close(descriptor); }

private:
    static int take(const std::string& path) {
        try {
            return Host::obtainLock(path, 0);
        } catch (const PException& failure) {
            if (failure.getExceptionDetail() == Host::LOCK_NOT_OBTAINED) {
                throw Refusal{Host::BACKEND_RESTORE_BUSY, "another restore is under way"};
            }
            throw Refusal{Host::BACKEND_NOT_STORED, "cannot use " + path};
        }
    }

    int descriptor;
};

Host::ConfigurationFile readStagedFile(const std::string& sessionIdentifier) {
    const std::string path = getCGIPath(Host::STAGING_FILE) + sessionIdentifier;
    std::vector<unsigned char> bytes;
    Host::ConfigurationFile file;
    if (!Host::readFile(path, Host::LARGEST_CONFIGURATION_FILE, bytes) || !decode(bytes, file)) {
        throw Refusal{Host::BACKEND_FILE_UNUSABLE, path + " is no usable configuration file"};
    }
    return file;
}

bool isUnknownVersion(std::string_view version) {
    return version.starts_with('-');
}

std::string_view majorNumber(std::string_view version) {
    return version.substr(0, version.find('.'));
}

bool fitTogether(std::string_view fileVersion, std::string_view targetVersion) {
    return isUnknownVersion(fileVersion) || isUnknownVersion(targetVersion) ||
           majorNumber(fileVersion) == majorNumber(targetVersion);
}

// Throws Refusal when `target` cannot take the configuration in `file`.
void checkTarget(const BoardDescription& description, const Host::ConfigurationFile& file,
                 const FaultSwitches& switches, unsigned int target) {
    const std::string name = "partition " + std::to_string(target);
    if (!description.isInstalled(target)) {
        throw Refusal{Host::BACKEND_NO_PARTITION, "there is no " + name};
    }
    const PartitionDescription& partition = description.partitions[target];
    if (switches.isRunning(target, partition.running)) {
        throw Refusal{Host::BACKEND_PARTITION_RUNNING, name + " is running"};
    }
    Host::ConfigurationFile result = file;
    result.version = description.biosVersionOf(partition);
    result.partitionName = partition.name;
    if (!fitTogether(file.version, result.version)) {
        throw Refusal{Host::BACKEND_VERSION_DIFFERS, name + " runs BIOS version " + result.version +
                                                         ", the file holds " + file.version};
    }
    // What a partition takes in, a backup of it must be able to give back.
    if (encode(result).empty()) {
        throw Refusal{Host::BACKEND_CONFIGURATION_SIZE, "too large for " + name};
    }
}

}  // namespace

void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const std::string& sessionIdentifier,
                          const std::vector<unsigned char>& targets) {
    if (targets.empty()) {
        throw Refusal{Host::BACKEND_NO_TARGETS, "the list of targets is empty"};
    }
    const RestoreLock lock(lockPath);
    const Host::ConfigurationFile file = readStagedFile(sessionIdentifier);
    const std::set<unsigned int> partitions(targets.begin(), targets.end());
    for (const unsigned int partition : partitions) {
        checkTarget(description, file, switches, partition);
    }
    if (!store.replace(partitions, file.payload)) {
        throw Refusal{Host::BACKEND_NOT_STORED, "the configurations cannot be written"};
    }
}

}  // namespace VeskLib::Board
