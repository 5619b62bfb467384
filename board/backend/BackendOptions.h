#pragma once

#include <string>
#include <vector>

namespace VeskLib::Board {

struct BackendOptions {
    std::string root;                // --root: the root folder of the board's files
    std::string boardFile;           // --board: the board description
    std::vector<std::string> hosts;  // --host: additional host names, normalised
    bool allowFaults = false;        // --allow-faults: accept the orders of boardctl
    bool help = false;               // --help
};

extern const char* const USAGE;

// Parses the command line. Returns false, with a message in `error` and `options` unspecified, if
// it is not valid.
bool readOptions(int argc, char** argv, BackendOptions& options, std::string& error);

}  // namespace VeskLib::Board
