#include "board/backend/backupConfiguration.h"

#include "board/backend/Refusal.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"

#include <VeskLib/PException.h>
#include <VeskLib/getCGIPath.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace VeskLib::Board {

namespace {

const int BACKUP_FILE_MODE = 0600;

}  // namespace

void backupConfiguration(const BoardDescription& description, const ConfigurationStore& store,
                         const std::string& sessionIdentifier, unsigned int partition,
                         std::time_t now, Host::AuditEvent& event) {
    if (!description.isInstalled(partition)) {
        throw Refusal{Host::BACKEND_NO_PARTITION,
                      "there is no partition " + std::to_string(partition)};
    }
    Host::ConfigurationFile file;
    file.saveTime = static_cast<std::uint32_t>(now);
    file.partition = partition;
    file.version = description.biosVersionOf(description.partitions[partition]);
    file.partitionName = description.partitions[partition].name;
    file.payload = store.read(partition);
    const std::vector<unsigned char> bytes = encode(file);
    if (bytes.empty()) {
        // Possible only if the partition's name or version has become longer since its
        // configuration was stored.
        throw Refusal{Host::BACKEND_CONFIGURATION_SIZE, "the configuration of partition " +
                                                            std::to_string(partition) +
                                                            " does not fit into a file"};
    }
    const std::string path = getCGIPath(Host::BACKUP_FILE) + sessionIdentifier;
    if (!Host::replaceFile(path, bytes, BACKUP_FILE_MODE)) {
        throw Refusal{Host::BACKEND_NOT_STORED,
                      "cannot write " + path + ": " + std::strerror(errno)};
    }
    try {
        Host::AuditEvent done = event;
        done.file = Host::auditedFile(bytes);
        done.result = "done";
        Host::record(done);
    } catch (...) {
        static_cast<void>(std::remove(path.c_str()));
        throw Refusal{Host::BACKEND_NOT_RECORDED, "the audit log cannot be written"};
    }
}

}  // namespace VeskLib::Board
