#include "client/command/OpenBoard.h"

#include "client/Failure.h"
#include "client/report/printResult.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace Efictl {

namespace {

ConnectionOptions connectionOf(const Options& options) {
    return {boardAddress(options), options.certificates, !options.insecure};
}

Credentials credentialsOf(const Options& options) {
    return findCredentials({hostIn(boardAddress(options)), options.user, options.passwordFile});
}

}  // namespace

// Asks for the password before the schedule starts, so that the timeout does not include typing.
OpenBoard::OpenBoard(const Options& options) : OpenBoard(options, credentialsOf(options)) {
}

OpenBoard::OpenBoard(const Options& options, const Credentials& credentials)
    : schedule(std::chrono::seconds(options.timeoutSeconds)),
      transport(connectionOf(options), schedule),
      open(transport, schedule, credentials) {
}

void OpenBoard::close(Result& result) {
    const std::string left = open.end();
    if (!left.empty()) {
        result.warnings.push_back(left);
    }
}

std::vector<PartitionRow> choosePartitions(const BoardPage& menu, const Options& options) {
    if (options.allPartitions) {
        return menu.partitions;
    }
    std::vector<PartitionRow> chosen;
    std::string missing;
    for (const unsigned int number : options.partitions) {
        const auto isOfNumber = [number](const PartitionRow& row) { return row.number == number; };
        const auto row = std::find_if(menu.partitions.begin(), menu.partitions.end(), isOfNumber);
        if (row == menu.partitions.end()) {
            missing += (missing.empty() ? "" : ", ") + std::to_string(number);
        } else if (std::none_of(chosen.begin(), chosen.end(), isOfNumber)) {
            chosen.push_back(*row);
        }
    }
    if (!missing.empty()) {
        throw Failure(ExitCode::REFUSED, "No such partition is installed: " + missing +
                                             ". `efictl list` shows the installed ones.");
    }
    return chosen;
}

void showProgress(const Options& options, const std::string& text) {
    if (!options.quiet && !options.asJSON && isatty(STDERR_FILENO) != 0) {
        std::cerr << forTerminal(text) << " ...\n";
    }
}

}  // namespace Efictl
