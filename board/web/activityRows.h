#pragma once

#include "platform/host/audit/AuditHistory.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace VeskLib::Board {

// The latest actions of one user or of all, newest first. Of a restore, only the outcome is listed
// if there is one.
struct LatestActions {
    std::vector<Host::AuditRecord> records;
    bool complete = true;     // false if older actions were left out
    bool unreadable = false;  // true if a file of the log could not be read
};

// Results of a restore whose outcome was not recorded, because the back-end died, for example. They
// are not in the log, but follow from the configurations that the next start of the back-end lists.
inline constexpr const char* FOUND_DONE = "found done";
inline constexpr const char* FOUND_UNCHANGED = "found unchanged";

// Finds out how restores ended, from all events of the log in reverse order.
class RestoreOutcomes {
public:
    // Notes what `event` says about restores. Returns true if it is the start of a restore with an
    // outcome already noted. If it is the start of another restore, sets its `result` to FOUND_DONE
    // or FOUND_UNCHANGED if that is known. Moves `after` out of a start of the back-end.
    bool settle(Host::AuditEvent& event);

private:
    using Sums = std::map<unsigned int, std::string>;

    std::set<std::string> requests;
    Sums started;  // the configurations at a start before which no later restore has been read
};

inline constexpr std::size_t MOST_ACTIONS = 100;

// The most bytes of the audit log that one page reads.
inline constexpr std::size_t MOST_AUDIT_BYTES = 4 * 1024 * 1024;

LatestActions readLatestActions(const std::string& user);

// Return what an action was and how it ended, in the request's language.
std::string describeAction(const Host::AuditEvent& event);
std::string describeResult(const Host::AuditEvent& event);

// Returns a time as "2026-01-31 23:59:59", in the board's local time.
std::string localTime(std::time_t time);

// Returns a time as "2026-01-31T22:59:59Z", for programs.
std::string utcTime(std::time_t time);

// Prints one row per action.
void printActivityRows(const LatestActions& actions);

}  // namespace VeskLib::Board
