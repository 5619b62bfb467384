// The description of a board, which the back-end reads at startup.

#include "board/backend/BoardDescription.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include "platform/host/storage/ConfigurationFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

using namespace VeskLib;

namespace {

// Returns the path of a file with this content.
const std::string& pathOf(const std::string& content) {
    static const int MEMORY = ::memfd_create("board", 0);
    static const std::string PATH = "/proc/self/fd/" + std::to_string(MEMORY);
    Fuzz::require(::fchmod(MEMORY, 0600) == 0 && ::ftruncate(MEMORY, 0) == 0 &&
                      ::pwrite(MEMORY, content.data(), content.size(), 0) ==
                          static_cast<ssize_t>(content.size()),
                  "the file of the description can be written");
    return PATH;
}

void requireLimits(const Board::PartitionDescription& partition) {
    Fuzz::require(partition.name.size() <= Host::LARGEST_PARTITION_NAME,
                  "a name is within its limit");
    Fuzz::require(partition.initialPayload.size() < Host::LARGEST_CONFIGURATION_FILE,
                  "a configuration fits into a file");
    Fuzz::require(partition.installed || partition.initialPayload.empty(),
                  "only an installed partition has a configuration");
}

void requireLimits(const Board::BoardDescription& description) {
    Fuzz::require(description.partitions.size() <= 256, "a restore can name every partition");
    for (const Board::PartitionDescription& partition : description.partitions) {
        requireLimits(partition);
        Fuzz::require(description.biosVersionOf(partition).size() <= Host::LARGEST_VERSION,
                      "a version is within its limit");
    }
    for (const Board::User& user : description.users) {
        Fuzz::require(!user.name.empty() && user.passwordHash.starts_with('$'),
                      "a user has a name and the hash of a password");
        Fuzz::require(user.rights.functions.find('\n') == std::string::npos,
                      "the functions are one line");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string& path = pathOf(Fuzz::textOf(data, size));
    try {
        requireLimits(Board::loadBoardDescription(path));
    } catch (const std::runtime_error& problem) {
        Fuzz::require(std::string(problem.what()).starts_with(path + ":"),
                      "a mistake is reported with its file");
    }
    return 0;
}
