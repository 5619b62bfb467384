#pragma once

#include "client/Schedule.h"
#include "client/http/Transport.h"
#include "client/login/Credentials.h"

#include <optional>
#include <string>
#include <vector>

namespace Efictl {

// What the command line says, and the environment where that is allowed.
struct Options {
    std::string command;

    // Of every command that talks to a board.
    std::string board;
    std::string user;
    std::string passwordFile;
    std::string certificates;
    bool insecure = false;
    unsigned int timeoutSeconds = 60;
    bool asJSON = false;
    bool quiet = false;

    // Of some commands.
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

// Returns the address of the board as it is used and shown: "https://name:port", without user,
// password, path or a slash at its end. Throws Failure (USAGE) for what is none, and for http to
// another machine without --insecure.
std::string boardAddress(const Options& options);

// Returns the host in such an address, as netrc names it.
std::string hostIn(const std::string& address);

}  // namespace Efictl
