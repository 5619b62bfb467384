#include "board/backend/ConfigurationStore.h"

#include "platform/host/storage/files.h"

#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace VeskLib::Board {

namespace {

const int STATE_FILE_MODE = 0600;

// Returns false if there is no state file yet. Throws std::runtime_error if it cannot be used.
bool load(const std::string& path, Payloads& payloads) {
    std::vector<unsigned char> bytes;
    if (!Host::readFile(path, std::numeric_limits<std::size_t>::max(), bytes)) {
        const int reason = errno;
        if (reason == ENOENT) {
            return false;
        }
        throw std::runtime_error("cannot read " + path + ": " + std::strerror(reason));
    }
    if (!decode(bytes, payloads)) {
        throw std::runtime_error(path + " is damaged; move it away to begin with the " +
                                 "configurations of the board description");
    }
    return true;
}

// Returns true if the file contains exactly these bytes. Preserves errno.
bool holds(const std::string& path, const std::vector<unsigned char>& bytes) {
    const int reason = errno;
    std::vector<unsigned char> found;
    const bool same = Host::readFile(path, bytes.size(), found) && found == bytes;
    errno = reason;
    return same;
}

}  // namespace

ConfigurationStore::ConfigurationStore(std::string path, const BoardDescription& description)
    : path(std::move(path)), current(std::make_shared<const Payloads>()) {
    Payloads payloads;
    bool complete = load(this->path, payloads);
    for (unsigned int number = 0; number < description.partitions.size(); ++number) {
        if (description.isInstalled(number)) {
            const auto& initial = description.partitions[number].initialPayload;
            complete = !payloads.emplace(number, initial).second && complete;
        }
    }
    if (complete) {
        current = std::make_shared<const Payloads>(std::move(payloads));
    } else if (!store(std::move(payloads), [] { return true; })) {
        throw std::runtime_error("cannot write " + this->path + ": " + std::strerror(errno));
    }
}

std::vector<unsigned char> ConfigurationStore::read(unsigned int partition) const {
    const std::shared_ptr<const Payloads> payloads = snapshot();
    const auto found = payloads->find(partition);
    return found == payloads->end() ? std::vector<unsigned char>() : found->second;
}

bool ConfigurationStore::replace(const std::set<unsigned int>& partitions,
                                 const std::vector<unsigned char>& payload,
                                 const std::function<bool()>& isWanted) {
    const std::scoped_lock lock(writing);
    Payloads changed = *snapshot();
    for (const unsigned int partition : partitions) {
        changed[partition] = payload;
    }
    return store(std::move(changed), isWanted);
}

std::shared_ptr<const Payloads> ConfigurationStore::snapshot() const {
    const std::scoped_lock lock(guard);
    return current;
}

bool ConfigurationStore::store(Payloads changed, const std::function<bool()>& isWanted) {
    // Everything is allocated before the file is written, so that file and memory cannot diverge.
    auto next = std::make_shared<const Payloads>(std::move(changed));
    const std::vector<unsigned char> bytes = encode(*next);
    // If only syncing the folder failed, the new file is in place all the same, and counts.
    if (!Host::replaceFile(path, bytes, STATE_FILE_MODE, isWanted) && !holds(path, bytes)) {
        return false;
    }
    const std::scoped_lock lock(guard);
    current.swap(next);
    return true;
}

}  // namespace VeskLib::Board
