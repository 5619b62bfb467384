#pragma once

#include "board/backend/BoardDescription.h"
#include "board/backend/StoredConfigurations.h"

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace VeskLib::Board {

// Keeps what each partition holds in one file, which is replaced as a whole. A change of several
// partitions is therefore on the disk either completely or not at all, whenever the process ends.
//
// May be used by several threads at once.
class ConfigurationStore {
public:
    // Opens the state file `path` and gives every installed partition that it does not hold its
    // initial configuration. What it holds of other partitions is kept. Throws std::runtime_error
    // when the file is damaged, or cannot be read or written.
    ConfigurationStore(std::string path, const BoardDescription& description);

    // The configuration of `partition`, as it is now; empty when the store does not hold it.
    std::vector<unsigned char> read(unsigned int partition) const;

    // Gives all of `partitions` the configuration `payload`. `isWanted` is asked directly before
    // that takes effect. Returns false, and none of them is changed, when it is not wanted any more
    // or cannot be stored.
    bool replace(
        const std::set<unsigned int>& partitions, const std::vector<unsigned char>& payload,
        const std::function<bool()>& isWanted = [] { return true; });

private:
    std::shared_ptr<const Payloads> snapshot() const;
    bool store(Payloads changed, const std::function<bool()>& isWanted);

    const std::string path;
    std::mutex writing;        // one change at a time
    mutable std::mutex guard;  // of `current`; never held while the disk is waited for
    std::shared_ptr<const Payloads> current;
};

}  // namespace VeskLib::Board
