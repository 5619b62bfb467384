#pragma once

#include <string>
#include <vector>

namespace VeskLib::Board {

struct BackendOptions {
    std::string root;                // --root: everything of the board lies under it
    std::string boardFile;           // --board: the board description
    std::vector<std::string> hosts;  // --host: further names, normalised
    bool allowFaults = false;        // --allow-faults: boardctl may make the back-end go wrong
    bool help = false;               // --help
};

extern const char* const USAGE;

// False, with `error` filled and `options` unspecified, when the arguments make no sense.
bool readOptions(int argc, char** argv, BackendOptions& options, std::string& error);

}  // namespace VeskLib::Board
