#include "board/backend/ConfigurationStore.h"

#include "platform/host/base/sha256.h"
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
        throw std::runtime_error(path + " is damaged; move it away to start again from the " +
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
    : path(std::move(path)), current(std::make_shared<const State>()) {
    State state;
    bool complete = load(this->path, state.payloads);
    for (unsigned int number = 0; number < description.partitions.size(); ++number) {
        if (description.isInstalled(number)) {
            const auto& initial = description.partitions[number].initialPayload;
            complete = !state.payloads.emplace(number, initial).second && complete;
        }
    }
    for (const auto& [partition, payload] : state.payloads) {
        state.sums[partition] = Host::sha256Hex(payload);
    }
    if (complete) {
        current = std::make_shared<const State>(std::move(state));
    } else if (!store(std::move(state), [] { return true; })) {
        throw std::runtime_error("cannot write " + this->path + ": " + std::strerror(errno));
    }
}

std::vector<unsigned char> ConfigurationStore::read(unsigned int partition) const {
    const std::shared_ptr<const State> state = snapshot();
    const auto found = state->payloads.find(partition);
    return found == state->payloads.end() ? std::vector<unsigned char>() : found->second;
}

std::string ConfigurationStore::sumOf(unsigned int partition) const {
    const std::shared_ptr<const State> state = snapshot();
    const auto found = state->sums.find(partition);
    return found == state->sums.end() ? Host::sha256Hex(std::vector<unsigned char>())
                                      : found->second;
}

bool ConfigurationStore::replace(const std::set<unsigned int>& partitions,
                                 const std::vector<unsigned char>& payload,
                                 const std::function<bool()>& isWanted) {
    const std::scoped_lock lock(writing);
    State changed = *snapshot();
    const std::string sum = Host::sha256Hex(payload);
    for (const unsigned int partition : partitions) {
        changed.payloads[partition] = payload;
        changed.sums[partition] = sum;
    }
    return store(std::move(changed), isWanted);
}

std::shared_ptr<const ConfigurationStore::State> ConfigurationStore::snapshot() const {
    const std::scoped_lock lock(guard);
    return current;
}

bool ConfigurationStore::store(State changed, const std::function<bool()>& isWanted) {
    // Everything is allocated before the file is written, so that file and memory cannot diverge.
    auto next = std::make_shared<const State>(std::move(changed));
    const std::vector<unsigned char> bytes = encode(next->payloads);
    // If only syncing the folder failed, the new file is in place all the same, and counts.
    if (!Host::replaceFile(path, bytes, STATE_FILE_MODE, isWanted) && !holds(path, bytes)) {
        return false;
    }
    const std::scoped_lock lock(guard);
    current.swap(next);
    return true;
}

}  // namespace VeskLib::Board
