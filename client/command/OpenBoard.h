#pragma once

#include "client/Schedule.h"
#include "client/board/BoardSession.h"
#include "client/command/Options.h"
#include "client/report/Result.h"

namespace Efictl {

// The connection and session of a command on its board.
class OpenBoard {
public:
    // Connects and logs in. Throws Failure on error.
    explicit OpenBoard(const Options& options);

    BoardSession& session() { return open; }

    // Ends the session. A failure becomes a warning of `result`.
    void close(Result& result);

private:
    OpenBoard(const Options& options, const Credentials& credentials);

    Schedule schedule;
    Transport transport;
    BoardSession open;
};

// Returns the partitions of `menu` that were selected by --partition, --to or --all. Throws Failure
// (REFUSED) if one of them is not installed.
std::vector<PartitionRow> choosePartitions(const BoardPage& menu, const Options& options);

// Prints a line of progress if standard error is a terminal, unless --quiet or --json is given.
void showProgress(const Options& options, const std::string& text);

}  // namespace Efictl
