#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace VeskLib::Board {

// When a partition was last backed up or restored, according to the audit log.
struct LastTime {
    std::time_t time = 0;  // 0 if not in the part of the log that was read
    std::string user;
    bool uncertain = false;  // true for a restore without an outcome
};

struct RoundRow {
    unsigned int number = 0;
    std::string name;
    std::string version;  // of the BIOS; "-" if it is not known
    LastTime backup;
    LastTime restore;
};

// Asks the back-end for the installed partitions, for a few seconds at most. Returns 0 and sets
// `rows`, or returns the error code of the back-end or the channel and leaves `rows` unchanged.
int askForPartitions(std::vector<RoundRow>& rows);

// Adds the times of each partition from the audit log. Returns false if some are missing because
// not all of the log was read.
bool findLastTimes(std::vector<RoundRow>& rows);

// Prints one row per partition, for a user with these rights.
void printRoundRows(const std::vector<RoundRow>& rows, bool mayBackUp, bool mayRestore);

}  // namespace VeskLib::Board
