#pragma once

#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// A line of the audit log as it is read back.
struct AuditRecord {
    std::time_t time = 0;
    AuditEvent event;  // without `before` and `after`
};

// Reads a line, with or without its line feed. Returns false, with `record` unchanged, if it is not
// a line of the audit log: other members than those of AuditEvent are passed over, but each of
// these must be of its kind and of a size that the board writes.
bool decode(std::string_view line, AuditRecord& record);

// The lines of the audit log, the newest first, from the log and its former files. It does not wait
// for those who write: of a line that is being written, nothing is seen.
class AuditHistory {
public:
    // Reads at most `mostBytes`, and only files that belong to the board's own user.
    explicit AuditHistory(std::size_t mostBytes) : budget(mostBytes) {}

    // Returns false if there is no older line. The line is valid until the next call.
    bool next(std::string_view& line);

    // Returns true if older lines were left out because there are too many, or because a file
    // cannot be read.
    bool wasCut() const { return cut; }
    bool wasUnreadable() const { return unreadable; }

private:
    bool openNext();

    std::size_t budget;
    int number = -1;  // of the file that is being read, 0 for the log itself
    unsigned long long device = 0;
    unsigned long long inode = 0;
    std::string text;  // what is left of it
    std::string current;
    bool cut = false;
    bool unreadable = false;
};

}  // namespace VeskLib::Host
