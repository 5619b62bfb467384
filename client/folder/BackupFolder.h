#pragma once

#include "client/http/Transport.h"
#include "platform/host/base/Descriptor.h"
#include "platform/host/storage/ConfigurationFile.h"

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// A file of a backup folder, as its name describes it: partition003-20261122T115427Z.dat is of
// partition 3, made on 2026-11-22 at 11:54:27 UTC.
struct BackupName {
    std::string name;
    unsigned int partition = 0;
    std::time_t time = 0;

    // Returns nothing for a name of another kind.
    static std::optional<BackupName> parse(const std::string& name);
    static BackupName make(unsigned int partition, std::time_t time);
};

// A usable backup with what is in it.
struct Backup {
    BackupName name;
    VeskLib::Host::ConfigurationFile file;
    std::size_t size = 0;
    std::string sha256;
};

// The backups of one board in a folder, which belongs to one process as long as this lives.
class BackupFolder {
public:
    enum class Use { READ, WRITE };

    // Opens the folder; for WRITE makes it if there is none, and takes hold of it. Throws Failure
    // (FAILED) if that cannot be done.
    BackupFolder(const std::string& path, Use use);

    // Returns the backups, by partition and the newest first.
    std::vector<BackupName> list() const;

    // Returns those of one partition, the newest first.
    std::vector<BackupName> list(unsigned int partition) const;

    // Returns the newest one of a partition that is usable; nothing if there is none.
    std::optional<Backup> findNewest(unsigned int partition) const;

    // Stores a backup that was made now and returns its name. The file has its name only once all
    // of it is on the disk. Throws Failure (FAILED) if it cannot be stored.
    BackupName store(unsigned int partition, const Bytes& bytes);

    // Removes all backups of a partition that are older than its `keep` newest usable ones, and
    // returns their names. Damaged files do not count, so that the last usable one always stays.
    std::vector<std::string> removeOlder(unsigned int partition, std::size_t keep);

    std::string pathOf(const std::string& name) const { return path + "/" + name; }

private:
    std::optional<Backup> read(const BackupName& name) const;

    const std::string path;
    std::unique_ptr<VeskLib::Host::Descriptor> hold;
};

}  // namespace Efictl
