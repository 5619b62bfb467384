#pragma once

#include "platform/host/audit/AuditEvent.h"
#include "platform/host/audit/Turn.h"
#include "platform/host/base/DeferredTermination.h"

#include <cstddef>
#include <string>

namespace VeskLib::Host {

// The number of rotated files that are kept; audit.log.1 is the newest.
inline constexpr int AUDIT_FORMER_FILES = 15;

// The board's audit log, /var/log/audit.log: one line of JSON per event. It is rotated at 1 MiB.
//
// While an AuditLog exists, no other process or thread can write to the log. A change made between
// two appended lines therefore keeps its place in the log's order.
class AuditLog {
public:
    // Locks the log, waiting up to 5 s; threads of this process get it in the order of their calls.
    // Reserves `reserve` bytes on the disk, so that a line about something that has happened does
    // not fail for lack of space. Throws PException (AUDIT_NOT_WRITTEN) on failure.
    explicit AuditLog(std::size_t reserve);
    AuditLog(const AuditLog&) = delete;
    AuditLog& operator=(const AuditLog&) = delete;
    ~AuditLog();

    // Appends the line of `event` and syncs it to the disk. On failure throws PException
    // (AUDIT_NOT_WRITTEN) and leaves the log as it was.
    void append(const AuditEvent& event);

    // Appends the line of an event that anybody can cause as often as they like. After ten events
    // of one origin in a minute, further ones are only counted, and reported in one line when the
    // minute is over, so that repeating an event does not rotate other lines out of the log. The
    // minute becomes two, four and so on, up to a day, as long as each period sees ten events.
    void appendLimited(const AuditEvent& event);

private:
    AuditLog(std::size_t reserve, const Deadline& deadline);

    void open(std::size_t reserve);
    void rotate();

    const std::string path;
    const Turn turn;
    const int lock;
    // Line and counts are written together.
    const DeferredTermination deferred;
    int descriptor = -1;
    long long size = 0;
};

// Locks the log and appends one line. Throws like AuditLog.
void record(const AuditEvent& event);

// Appends a limited line about a refusal. Does not throw, because a refusal changes nothing and the
// client must get it all the same; a failure is traced.
void recordRefusal(const AuditEvent& event) noexcept;

}  // namespace VeskLib::Host
