#pragma once

#include "client/Schedule.h"
#include "client/http/Transport.h"
#include "client/login/Credentials.h"

#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// The options of the command line; some take their default from the environment.
struct Options {
    std::string command;

    // Options of every command that talks to a board.
    std::string board;
    std::string user;
    std::string passwordFile;
    std::string certificates;
    bool insecure = false;
    unsigned int timeoutSeconds = 60;
    bool asJSON = false;
    bool quiet = false;

    // Options of single commands.
    std::vector<unsigned int> partitions;
    bool allPartitions = false;
    std::string folder;
    std::vector<std::string> files;
    bool onlyIfChanged = false;
    std::size_t keep = 0;  // 0 keeps all
    bool unchangedIsDifferent = false;
    bool dryRun = false;
    bool requireSameVersion = false;
    bool requirePartition = false;
    bool againstBoard = false;
    std::optional<unsigned int> longestGapHours;
};

// Returns the address of the board in the form "https://name:port", without a trailing slash.
// Throws Failure (USAGE) if it is malformed, contains a user, a password or a path, or uses http
// to another machine without --insecure.
std::string boardAddress(const Options& options);

// Returns the host of such an address, in the form that netrc uses.
std::string hostIn(const std::string& address);

}  // namespace Efictl
