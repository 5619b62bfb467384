#pragma once

#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// A line read from the audit log.
struct AuditRecord {
    std::time_t time = 0;
    AuditEvent event;  // without `session`
};

// Parses a line, with or without its line feed. Returns false and leaves `record` unchanged if it
// is not a line of the audit log. Unknown members are ignored, but each member of AuditEvent must
// have the right type and a size that the board writes.
bool decode(std::string_view line, AuditRecord& record);

// Reads the lines of the audit log and its former files, newest first. Takes no lock: a line that
// is still being written is left out.
class AuditHistory {
public:
    // Reads at most `mostBytes`, and only files that belong to the board's own user.
    explicit AuditHistory(std::size_t mostBytes) : budget(mostBytes) {}

    // Returns the next older line, valid until the next call. Returns false if there is none.
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
    std::string text;  // the part of that file not yet returned
    std::string current;
    bool cut = false;
    bool unreadable = false;
};

}  // namespace VeskLib::Host
