#pragma once

#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <map>
#include <string>
#include <vector>

namespace VeskLib::Host {

// Limits the log lines of events that anybody can cause. Limits apply per origin: a user, or all
// clients that are not logged in.
class AuditLimits {
public:
    static constexpr unsigned int LINES = 10;  // in one period
    static constexpr std::time_t SHORTEST_PERIOD = 60;
    static constexpr std::time_t LONGEST_PERIOD = 24 * 60 * 60;

    // Counts `event`, which happens at `now`. Returns true if it gets a line of its own.
    bool admit(const AuditEvent& event, std::time_t now);

    // Returns events that report the counts of all periods that are over, and resets these counts.
    // A period that starts in the future, because the clock was set back, counts as over.
    std::vector<AuditEvent> takeReports(std::time_t now);

    // Converts to text and back. A damaged text gives limits without counts.
    std::string save() const;
    static AuditLimits load(const std::string& text);

private:
    struct Period {
        std::time_t start = 0;
        std::time_t length = SHORTEST_PERIOD;
        unsigned int lines = 0;
        std::map<std::string, unsigned int> counts;

        bool isOver(std::time_t now) const { return now < start || now >= start + length; }
    };

    class Reader;

    std::map<std::string, Period> periods;  // by user; "" for those who are not logged in
};

}  // namespace VeskLib::Host
