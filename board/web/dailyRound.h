#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace VeskLib::Board {

// When a partition was last backed up or restored, according to the audit log.
struct LastTime {
    std::time_t time = 0;  // 0: not in the part of the log that was read
    std::string user;
    bool uncertain = false;  // a restore without an outcome
};

struct RoundRow {
    unsigned int number = 0;
    std::string name;
    std::string version;  // of the BIOS; "-" when it is not known
    LastTime backup;
    LastTime restore;
};

// Asks the back-end for the installed partitions. Returns 0 with `rows` filled, or the code of the
// back-end or of the channel with `rows` unchanged; the answer is there within a few seconds.
int askForPartitions(std::vector<RoundRow>& rows);

// Fills in what the audit log has of each. Returns false if the log could not be read so far back
// that every line was seen.
bool findLastTimes(std::vector<RoundRow>& rows);

// Prints the rows of the table for a user with these rights.
void printRoundRows(const std::vector<RoundRow>& rows, bool mayBackUp, bool mayRestore);

}  // namespace VeskLib::Board
