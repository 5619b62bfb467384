#include "board/backend/restoreConfiguration.h"

#include "board/backend/Refusal.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"
#include "platform/host/storage/obtainLock.h"

#include <VeskLib/getCGIPath.h>

#include <unistd.h>

#include <set>
#include <string_view>

namespace VeskLib::Board {

namespace {

// What the two lines of a restore of 256 partitions take at most, in bytes.
const std::size_t LARGEST_LINES = 2 * 256 * 160 + 4096;

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

Host::ConfigurationFile readStagedFile(const std::string& sessionIdentifier,
                                       Host::AuditEvent& event) {
    const std::string path = getCGIPath(Host::STAGING_FILE) + sessionIdentifier;
    std::vector<unsigned char> bytes;
    struct stat status = {};
    Host::ConfigurationFile file;
    if (!Host::readOwnFile(path, Host::LARGEST_CONFIGURATION_FILE, bytes, status) ||
        !decode(bytes, file)) {
        throw Refusal{Host::BACKEND_FILE_UNUSABLE, path + " is no usable configuration file"};
    }
    event.file = Host::auditedFile(bytes);
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

// Changes the partitions between two lines of the audit log.
void replaceRecorded(ConfigurationStore& store, const std::set<unsigned int>& partitions,
                     const std::vector<unsigned char>& payload, Host::AuditEvent& event) {
    Host::AuditLog log(LARGEST_LINES);
    for (const unsigned int partition : partitions) {
        event.before[partition] = Host::sha256Hex(store.read(partition));
        event.after[partition] = Host::sha256Hex(payload);
    }
    event.result = "begun";
    log.append(event);
    const bool stored = store.replace(partitions, payload);
    event.result = "done";
    if (!stored) {
        event.result = "failed";
        event.code = Host::BACKEND_NOT_STORED;
    }
    try {
        log.append(event);
    } catch (...) {  // whatever it was, the partitions are as they are
        throw Refusal{Host::BACKEND_OUTCOME_NOT_RECORDED, "the audit log lacks the outcome"};
    }
    if (!stored) {
        throw Refusal{Host::BACKEND_NOT_STORED, "the configurations cannot be written"};
    }
}

}  // namespace

void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const std::string& sessionIdentifier,
                          const std::vector<unsigned char>& targets, Host::AuditEvent& event) {
    if (targets.empty()) {
        throw Refusal{Host::BACKEND_NO_TARGETS, "the list of targets is empty"};
    }
    const RestoreLock lock(lockPath);
    const Host::ConfigurationFile file = readStagedFile(sessionIdentifier, event);
    const std::set<unsigned int> partitions(targets.begin(), targets.end());
    for (const unsigned int partition : partitions) {
        checkTarget(description, file, switches, partition);
    }
    try {
        replaceRecorded(store, partitions, file.payload, event);
    } catch (const PException&) {
        throw Refusal{Host::BACKEND_NOT_RECORDED, "the audit log takes no line"};
    }
}

}  // namespace VeskLib::Board
