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

// The parsed name of a backup: partition003-20261122T115427Z.dat is of partition 3, made on
// 2026-11-22 at 11:54:27 UTC.
struct BackupName {
    std::string name;
    unsigned int partition = 0;
    std::time_t time = 0;

    // Returns nothing if the name has another form.
    static std::optional<BackupName> parse(const std::string& name);
    static BackupName make(unsigned int partition, std::time_t time);
};

// A usable backup and its contents.
struct Backup {
    BackupName name;
    VeskLib::Host::ConfigurationFile file;
    std::size_t size = 0;
    std::string sha256;
};

// The folder of one board's backups. While open for WRITE, it is locked against other writers.
class BackupFolder {
public:
    enum class Use { READ, WRITE };

    // Opens the folder; for WRITE, creates it if it is absent, and locks it. Throws Failure
    // (FAILED) on error.
    BackupFolder(const std::string& path, Use use);

    // Returns all backups, sorted by partition, newest first.
    std::vector<BackupName> list() const;

    // Returns the backups of one partition, newest first.
    std::vector<BackupName> list(unsigned int partition) const;

    // Returns the newest usable backup of a partition; nothing if there is none.
    std::optional<Backup> findNewest(unsigned int partition) const;

    // Stores a backup under the current time and returns its name. The name appears only after the
    // contents are on disk. Throws Failure (FAILED) on error.
    BackupName store(unsigned int partition, const Bytes& bytes);

    // Removes the backups of a partition that are older than its `keep` newest usable ones, and
    // returns their names. Does not count unusable files, so that the last usable one is kept.
    std::vector<std::string> removeOlder(unsigned int partition, std::size_t keep);

    std::string pathOf(const std::string& name) const { return path + "/" + name; }

private:
    std::optional<Backup> read(const BackupName& name) const;

    const std::string path;
    std::unique_ptr<VeskLib::Host::Descriptor> hold;
};

}  // namespace Efictl
