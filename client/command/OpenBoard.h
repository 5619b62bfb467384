#pragma once

#include "client/Schedule.h"
#include "client/board/BoardSession.h"
#include "client/command/Options.h"
#include "client/report/Result.h"

namespace Efictl {

// The board that a command works on, for as long as the command lasts.
class OpenBoard {
public:
    // Connects and logs in. Throws Failure if that cannot be done.
    explicit OpenBoard(const Options& options);

    BoardSession& session() { return open; }

    // Logs out. What could not be done becomes a warning of `result`.
    void close(Result& result);

private:
    OpenBoard(const Options& options, const Credentials& credentials);

    Schedule schedule;
    Transport transport;
    BoardSession open;
};

// Returns the partitions of the menu that the options choose, by number: those of --partition or
// --to, or all. Throws Failure (REFUSED) if one is not installed.
std::vector<PartitionRow> choosePartitions(const BoardPage& menu, const Options& options);

// Says on standard error what is going on, if a person looks on.
void showProgress(const Options& options, const std::string& text);

}  // namespace Efictl
