#pragma once

#include <string>

namespace VeskLib::Board {

struct BackendOptions {
    std::string root;          // --root: everything of the board lies under it
    std::string boardFile;     // --board: the board description
    bool allowFaults = false;  // --allow-faults: boardctl may make the back-end go wrong
    bool help = false;         // --help
};

extern const char* const USAGE;

// False, with `error` filled and `options` unspecified, when the arguments make no sense.
bool readOptions(int argc, char** argv, BackendOptions& options, std::string& error);

}  // namespace VeskLib::Board
