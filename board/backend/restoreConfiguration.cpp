#include "board/backend/restoreConfiguration.h"

#include "board/backend/Refusal.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/biosVersion.h"
#include "platform/host/storage/files.h"
#include "platform/host/storage/obtainLock.h"

#include <VeskLib/getCGIPath.h>

#include <unistd.h>

#include <optional>
#include <set>
#include <string_view>

namespace VeskLib::Board {

namespace {

// The maximum size of both log lines of a restore of 256 partitions, in bytes.
const std::size_t LARGEST_LINES = 2 * 256 * 160 + 4096;

// Locks the lock file of restores. Throws Refusal if another restore has locked it.
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

Host::ConfigurationFile readStagedFile(const RestoreRequest& request, Host::AuditEvent& event) {
    const std::string path = getCGIPath(Host::STAGING_FILE) + request.sessionIdentifier;
    std::vector<unsigned char> bytes;
    struct stat status = {};
    Host::ConfigurationFile file;
    if (!Host::readOwnFile(path, Host::LARGEST_CONFIGURATION_FILE, bytes, status) ||
        !decode(bytes, file)) {
        throw Refusal{Host::BACKEND_FILE_UNUSABLE, path + " is not a usable configuration file"};
    }
    event.file = Host::auditedFile(bytes);
    if (!request.stagedFile.empty() && request.stagedFile != event.file->sha256) {
        throw Refusal{Host::BACKEND_OTHER_FILE, path + " is not the file that the page showed"};
    }
    return file;
}

// Returns why `target` cannot receive the configuration in `file`, or nullopt if it can.
std::optional<Refusal> judgeTarget(const BoardDescription& description,
                                   const Host::ConfigurationFile& file,
                                   const FaultSwitches& switches, unsigned int target) {
    const std::string name = "partition " + std::to_string(target);
    Host::RefusalDetails details = {.fileVersion = {}, .partitions = {{target, ""}}};
    if (!description.isInstalled(target)) {
        return Refusal{Host::BACKEND_NO_PARTITION, "there is no " + name, details};
    }
    const PartitionDescription& partition = description.partitions[target];
    if (switches.isRunning(target, partition.running)) {
        return Refusal{Host::BACKEND_PARTITION_RUNNING, name + " is running", details};
    }
    Host::ConfigurationFile result = file;
    result.version = description.biosVersionOf(partition);
    result.partitionName = partition.name;
    if (!Host::fitTogether(file.version, result.version)) {
        details = {.fileVersion = file.version, .partitions = {{target, result.version}}};
        return Refusal{
            Host::BACKEND_VERSION_DIFFERS,
            name + " runs BIOS version " + result.version + ", the file has " + file.version,
            details};
    }
    // A partition must not receive a configuration that does not fit into its backup file.
    if (encode(result).empty()) {
        return Refusal{Host::BACKEND_CONFIGURATION_SIZE, "too large for " + name, details};
    }
    return std::nullopt;
}

// Throws the Refusal of the first target that cannot receive the configuration. Its details list
// all targets that are refused for the same reason.
void checkTargets(const BoardDescription& description, const Host::ConfigurationFile& file,
                  const FaultSwitches& switches, const std::set<unsigned int>& targets) {
    std::optional<Refusal> first;
    for (const unsigned int target : targets) {
        const std::optional<Refusal> refusal = judgeTarget(description, file, switches, target);
        if (!first) {
            first = refusal;
        } else if (refusal && refusal->code == first->code) {
            first->details.partitions.push_back(refusal->details.partitions.front());
        }
    }
    if (first) {
        throw Refusal(*first);
    }
}

// Changes the partitions, with a line of the audit log before and after.
void replaceRecorded(ConfigurationStore& store, const std::set<unsigned int>& partitions,
                     const std::vector<unsigned char>& payload, const IsAwaited& isAwaited,
                     Host::AuditEvent& event) {
    Host::AuditLog log(LARGEST_LINES);
    const std::string after = Host::sha256Hex(payload);
    for (const unsigned int partition : partitions) {
        event.before[partition] = store.sumOf(partition);
        event.after[partition] = after;
    }
    event.result = "begun";
    log.append(event);
    bool abandoned = false;
    const bool stored = store.replace(partitions, payload, [&] {
        abandoned = !isAwaited();
        return !abandoned;
    });
    std::optional<Refusal> refusal;
    event.result = "done";
    if (!stored) {
        refusal = abandoned
                      ? Refusal{Host::BACKEND_ABANDONED, "its client has disconnected"}
                      : Refusal{Host::BACKEND_NOT_STORED, "the configurations cannot be written"};
        event.result = abandoned ? "refused" : "failed";
        event.code = refusal->code;
    }
    try {
        log.append(event);
    } catch (...) {  // no error undoes the change
        throw Refusal{Host::BACKEND_OUTCOME_NOT_RECORDED, "the audit log lacks the outcome"};
    }
    if (refusal) {
        throw Refusal(*refusal);
    }
}

}  // namespace

void restoreConfiguration(const BoardDescription& description, ConfigurationStore& store,
                          const FaultSwitches& switches, const std::string& lockPath,
                          const RestoreRequest& request, Host::AuditEvent& event) {
    if (request.targets.empty()) {
        throw Refusal{Host::BACKEND_NO_TARGETS, "the list of targets is empty"};
    }
    const RestoreLock lock(lockPath);
    const Host::ConfigurationFile file = readStagedFile(request, event);
    const std::set<unsigned int> partitions(request.targets.begin(), request.targets.end());
    checkTargets(description, file, switches, partitions);
    try {
        replaceRecorded(store, partitions, file.payload, request.isAwaited, event);
    } catch (const PException&) {
        throw Refusal{Host::BACKEND_NOT_RECORDED, "the audit log cannot be written"};
    }
}

}  // namespace VeskLib::Board
