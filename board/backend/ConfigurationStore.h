#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/StoredConfigurations.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace VeskLib::Board {

// Stores the configurations of all partitions in one file, which is replaced atomically. A change
// of several partitions is therefore on the disk either completely or not at all, whenever the
// process ends.
//
// May be used by several threads at once.
class ConfigurationStore {
public:
    // Opens the state file `path`. Installed partitions that it does not contain get their initial
    // configuration; entries of other partitions are kept. Throws std::runtime_error if the file is
    // damaged, or cannot be read or written.
    ConfigurationStore(std::string path, const BoardDescription& description);

    // Returns the current configuration of `partition`; empty if the store has none.
    std::vector<unsigned char> read(unsigned int partition) const;

    // Returns the SHA-256 of read(partition), in hexadecimal. It is computed only once for each
    // change, because the audit log has the sums of all targets of a restore.
    std::string sumOf(unsigned int partition) const;

    // Gives all `partitions` the configuration `payload`. Calls `isWanted` immediately before the
    // change takes effect. Returns false and changes none of them if the change is no longer wanted
    // or cannot be stored.
    bool replace(
        const std::set<unsigned int>& partitions, const std::vector<unsigned char>& payload,
        const std::function<bool()>& isWanted = [] { return true; });

private:
    using Sums = std::map<unsigned int, std::string>;

    struct State {
        Payloads payloads;
        Sums sums;
    };

    std::shared_ptr<const State> snapshot() const;
    bool store(State changed, const std::function<bool()>& isWanted);

    const std::string path;
    std::mutex writing;        // one change at a time
    mutable std::mutex guard;  // of `current`; never locked during disk access
    std::shared_ptr<const State> current;
};

}  // namespace VeskLib::Board
