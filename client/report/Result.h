#pragma once

#include "client/Failure.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// The result of a command, for people and for programs. Texts of boards and files may contain any
// characters; printResult.h makes them safe for a terminal.
struct Result {
    ExitCode exitCode = ExitCode::DONE;
    bool changed = false;

    struct Reason {
        std::string text;
        std::optional<MessageNumber> number;
    };
    std::optional<Reason> reason;  // for an exit code other than DONE

    std::vector<std::string> lines;  // for people
    std::vector<std::string> warnings;
    nlohmann::ordered_json partitions = nlohmann::ordered_json::array();
    nlohmann::ordered_json details = nlohmann::ordered_json::object();  // other members

    // Records a failure. The most severe one determines exit code and reason.
    void fail(const Failure& failure);
};

// Returns a reason as JSON: its text, and the board's message number and code, or null for each.
nlohmann::ordered_json toJSON(const Result::Reason& reason);

// Returns a BIOS version as JSON; null if it is unknown.
nlohmann::ordered_json versionToJSON(const std::string& version);

// Returns the JSON members that every command has for a partition.
nlohmann::ordered_json partitionToJSON(unsigned int number, const std::string& name,
                                       const std::string& version);

// Returns the status of a partition after a failure: "refused", "unknown" or "failed".
const char* statusOf(const Failure& failure);

// Returns "Partition 3 (name)", or "Partition 3" without a name.
std::string describePartition(unsigned int number, const std::string& name = "");

}  // namespace Efictl
