#pragma once

#include "platform/host/audit/AuditHistory.h"

#include <set>
#include <string>
#include <vector>

namespace VeskLib::Board {

// The latest actions, the newest first: of `user`, or of everybody if `user` is empty. Of a restore
// only its outcome counts, if there is one.
struct LatestActions {
    std::vector<Host::AuditRecord> records;
    bool complete = true;     // false if older actions were left out
    bool unreadable = false;  // the log, or one of its former files
};

// Which restores have an outcome, found in the log from its newest line on.
class RestoreOutcomes {
public:
    // Notes the outcome of a restore. Returns true if `event` is the beginning of one whose outcome
    // was noted before.
    bool settle(const Host::AuditEvent& event);

private:
    std::set<std::string> requests;
};

inline constexpr std::size_t MOST_ACTIONS = 100;

// Bytes of the audit log that one page reads at most.
inline constexpr std::size_t MOST_AUDIT_BYTES = 4 * 1024 * 1024;

LatestActions readLatestActions(const std::string& user);

// What an action is and how it ended, in words of the request's language.
std::string describeAction(const Host::AuditEvent& event);
std::string describeResult(const Host::AuditEvent& event);

// "2026-01-31 23:59:59" in the board's own time.
std::string localTime(std::time_t time);

// "2026-01-31T22:59:59Z", for programs.
std::string utcTime(std::time_t time);

// Prints the rows of the table.
void printActivityRows(const LatestActions& actions);

}  // namespace VeskLib::Board
