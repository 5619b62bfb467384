#pragma once

#include "client/Failure.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// The result of a command, for people and for programs. The texts of boards and files in it may
// contain any characters: they are made safe for a terminal when they are printed.
struct Result {
    ExitCode exitCode = ExitCode::DONE;
    bool changed = false;

    struct Reason {
        std::string text;
        std::optional<MessageNumber> number;
    };
    std::optional<Reason> reason;  // of an exit code other than DONE

    std::vector<std::string> lines;  // for people
    std::vector<std::string> warnings;
    nlohmann::ordered_json partitions = nlohmann::ordered_json::array();
    nlohmann::ordered_json details = nlohmann::ordered_json::object();  // other members

    // Records a failure. Of several, the most severe sets exit code and reason.
    void fail(const Failure& failure);
};

// Returns the text of a failure, with the number and the code of the board's message or null.
nlohmann::ordered_json toJSON(const Result::Reason& reason);

// Returns a BIOS version as JSON: null if it is not known.
nlohmann::ordered_json versionToJSON(const std::string& version);

// Returns the members that a partition has in every command.
nlohmann::ordered_json partitionToJSON(unsigned int number, const std::string& name,
                                       const std::string& version);

// Returns the status of a partition at which a command failed: "refused", "unknown" or "failed".
const char* statusOf(const Failure& failure);

// Returns "Partition 3 (name)", without a name "Partition 3".
std::string describePartition(unsigned int number, const std::string& name = "");

}  // namespace Efictl
