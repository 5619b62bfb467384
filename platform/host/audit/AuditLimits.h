#pragma once

#include "platform/host/audit/AuditEvent.h"

#include <ctime>
#include <map>
#include <string>
#include <vector>

namespace VeskLib::Host {

// Which of the events that anybody can cause get a line of their own, by origin: a user, or
// everybody who is not logged in.
class AuditLimits {
public:
    static constexpr unsigned int LINES = 10;  // in one period
    static constexpr std::time_t SHORTEST_PERIOD = 60;
    static constexpr std::time_t LONGEST_PERIOD = 24 * 60 * 60;

    // Counts `event`, which happens at `now`. Returns true if it gets a line of its own.
    bool admit(const AuditEvent& event, std::time_t now);

    // Returns the events that report what was only counted in the periods that are over, and
    // forgets the counts. A period that the clock says begins in the future is over.
    std::vector<AuditEvent> takeReports(std::time_t now);

    // As text, and back. A text that is damaged gives limits without any counts.
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
