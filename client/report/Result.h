#pragma once

#include "client/Failure.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// What a command has come to, for people and for programs. Texts are as boards and files have them:
// they become fit for a terminal when they are printed.
struct Result {
    ExitCode exitCode = ExitCode::DONE;
    bool changed = false;

    struct Reason {
        std::string text;
        std::optional<MessageNumber> number;
    };
    std::optional<Reason> reason;  // why it is not DONE

    std::vector<std::string> lines;  // for people
    std::vector<std::string> warnings;
    nlohmann::ordered_json partitions = nlohmann::ordered_json::array();
    nlohmann::ordered_json details = nlohmann::ordered_json::object();  // the command's own members

    // Notes a failure. The worst of several counts: the one that has to be looked at first.
    void fail(const Failure& failure);
};

// Returns what JSON has for a failure: its text, and the board's message or null.
nlohmann::ordered_json toJSON(const Result::Reason& reason);

// Returns the text for a partition's BIOS version: null if it is not known.
nlohmann::ordered_json versionToJSON(const std::string& version);

// Returns the members that a partition has in every command.
nlohmann::ordered_json partitionToJSON(unsigned int number, const std::string& name,
                                       const std::string& version);

// Returns the status of a partition at which a command failed: "refused", "unknown" or "failed".
const char* statusOf(const Failure& failure);

// Returns "Partition 3 (name)", without a name "Partition 3".
std::string describePartition(unsigned int number, const std::string& name = "");

}  // namespace Efictl
