#include "board/backend/BackendOptions.h"

#include "platform/host/channel/hostNames.h"

#include <string_view>

namespace VeskLib::Board {

const char* const USAGE =
    "usage: efi_backend --root DIR --board FILE [--host NAME]... [--allow-faults]\n"
    "  --root DIR      the root folder of the board's files\n"
    "  --board FILE    the board description (TOML)\n"
    "  --host NAME     a host name of the board, in addition to those of its description\n"
    "  --allow-faults  accept the orders of boardctl; only for tests and demonstrations\n";

bool readOptions(int argc, char** argv, BackendOptions& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help") {
            options.help = true;
            return true;
        }
        if (argument == "--allow-faults") {
            options.allowFaults = true;
            continue;
        }
        if (argument != "--root" && argument != "--board" && argument != "--host") {
            error = "unknown argument " + std::string(argument);
            return false;
        }
        if (++i == argc) {
            error = std::string(argument) + " needs a value";
            return false;
        }
        if (argument == "--host") {
            options.hosts.push_back(Host::normaliseHostName(argv[i]));
            if (options.hosts.back().empty()) {
                error = std::string(argv[i]) + " is not a host name";
                return false;
            }
            continue;
        }
        (argument == "--root" ? options.root : options.boardFile) = argv[i];
    }
    if (options.root.empty() || options.boardFile.empty()) {
        error = "--root and --board are both needed";
        return false;
    }
    return true;
}

}  // namespace VeskLib::Board
