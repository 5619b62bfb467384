#include "board/inspector/FileReport.h"
#include "client/board/checkDownload.h"
#include "client/command/OpenBoard.h"
#include "client/command/commands.h"
#include "client/command/localFile.h"
#include "client/folder/BackupFolder.h"

#include <algorithm>
#include <memory>

namespace Efictl {

namespace {

using nlohmann::ordered_json;
using VeskLib::Board::Difference;
using VeskLib::Host::ConfigurationFile;

const std::string SETTING = "setting ";
const std::string PAYLOAD_SIZE = "payload size";
const std::string NOTHING = "(none)";

// The sources of two compared configurations.
struct Pair {
    std::string file;
    std::string other;                      // empty for a partition
    std::optional<unsigned int> partition;  // empty between files
};

ordered_json valueToJSON(const std::string& value) {
    return value == NOTHING ? ordered_json() : ordered_json(value);
}

ordered_json toJSON(const Difference& difference, const Pair& pair) {
    const bool isSetting = difference.what.starts_with(SETTING);
    const char* const kind = isSetting                           ? "setting"
                             : difference.what == "BIOS version" ? "bios_version"
                                                                 : "payload";
    ordered_json partition;
    if (pair.partition) {
        partition = *pair.partition;
    }
    return {{"partition", partition},
            {"file", pair.file},
            {"other", pair.other.empty() ? ordered_json() : ordered_json(pair.other)},
            {"kind", kind},
            {"name", isSetting ? difference.what.substr(SETTING.size()) : difference.what},
            {"expected", valueToJSON(difference.first)},
            {"found", valueToJSON(difference.second)}};
}

// Returns the differences between two configurations, ignoring save time and partition.
std::vector<Difference> findDifferences(const ConfigurationFile& one,
                                        const ConfigurationFile& other) {
    std::vector<Difference> all = compare(one, other, VeskLib::Board::SaveTime::IGNORED);
    std::erase_if(all, [](const Difference& difference) {
        return difference.what == "partition" || difference.what == "partition name";
    });
    const bool isExplained = std::any_of(all.begin(), all.end(), [](const Difference& difference) {
        return difference.what != PAYLOAD_SIZE && difference.what != "BIOS version";
    });
    std::erase_if(all, [isExplained](const Difference& difference) {
        return isExplained && difference.what == PAYLOAD_SIZE;
    });
    return all;
}

// Adds the differences to `result`. Returns true if there are any.
bool addDifferences(const ConfigurationFile& one, const ConfigurationFile& other, const Pair& pair,
                    Result& result) {
    const std::vector<Difference> differences = findDifferences(one, other);
    const std::string found =
        pair.partition ? "partition " + std::to_string(*pair.partition) : pair.other;
    for (const Difference& difference : differences) {
        result.details["differences"].push_back(toJSON(difference, pair));
        result.lines.push_back(found + ": " + difference.what + ": " + difference.first + " -> " +
                               difference.second);
    }
    if (differences.empty()) {
        result.lines.push_back(found + ": the same as " + pair.file);
    } else {
        result.fail(Failure(ExitCode::DIFFERENT, "There are differences."));
    }
    return !differences.empty();
}

void compareFiles(const Options& options, Result& result) {
    const LocalFile first = readLocalFile(options.files.front());
    for (std::size_t i = 1; i < options.files.size(); ++i) {
        const LocalFile other = readLocalFile(options.files[i]);
        addDifferences(first.file, other.file, {first.path, other.path, std::nullopt}, result);
    }
}

// The files to compare partitions with: one golden file, or the newest backup of each.
class Expectation {
public:
    explicit Expectation(const Options& options) {
        if (options.files.empty()) {
            folder = std::make_unique<BackupFolder>(options.folder, BackupFolder::Use::READ);
        } else {
            golden = readLocalFile(options.files.front());
        }
    }

    // Returns the partition that the golden file was saved from.
    unsigned int home() const { return golden.file.partition; }

    // Returns the file for a partition. Throws Failure (FAILED) if there is none.
    LocalFile of(unsigned int partition) const {
        if (folder == nullptr) {
            return golden;
        }
        std::optional<Backup> newest = folder->findNewest(partition);
        if (!newest) {
            throw Failure(ExitCode::FAILED, "There is no usable backup of partition " +
                                                std::to_string(partition) + " in the folder.");
        }
        return {newest->name.name, newest->sha256, std::move(newest->file)};
    }

private:
    LocalFile golden;
    std::unique_ptr<BackupFolder> folder;
};

bool differs(const Options& options, BoardSession& board, const PartitionRow& partition,
             const Expectation& expectation, ordered_json& json, Result& result) {
    showProgress(options, "Reading " + describePartition(partition.number, partition.name));
    const ConfigurationFile found = checkDownload(board.backUp(partition.number), partition);
    const LocalFile expected = expectation.of(partition.number);
    json["file"] = expected.path;
    return addDifferences(expected.file, found, {expected.path, "", partition.number}, result);
}

void compareBoard(const Options& given, Result& result) {
    const Expectation expectation(given);
    Options options = given;
    if (options.partitions.empty() && options.files.empty()) {
        options.allPartitions = true;
    } else if (options.partitions.empty() && !options.allPartitions) {
        options.partitions = {expectation.home()};
    }
    OpenBoard board(options);
    bool goesOn = true;
    for (const PartitionRow& partition : choosePartitions(board.session().menu(), options)) {
        ordered_json json = partitionToJSON(partition.number, partition.name, partition.version);
        json.update({{"status", "skipped"}, {"file", nullptr}});
        try {
            if (goesOn) {
                json["status"] =
                    differs(options, board.session(), partition, expectation, json, result)
                        ? "different"
                        : "same";
            }
        } catch (const Failure& failure) {
            json["status"] = statusOf(failure);
            result.lines.push_back(describePartition(partition.number, partition.name) + ": " +
                                   failure.what());
            result.fail(failure);
            goesOn = failure.exitCode() != ExitCode::UNREACHABLE;
        }
        result.partitions.push_back(json);
    }
    board.close(result);
}

}  // namespace

void diffPartitions(const Options& options, Result& result) {
    result.details["differences"] = ordered_json::array();
    options.againstBoard ? compareBoard(options, result) : compareFiles(options, result);
}

}  // namespace Efictl
